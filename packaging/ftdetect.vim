autocmd BufNewFile,BufRead *.kiln setfiletype kiln
