# Trains maps with the kohonen package. A request is a line
#   FILE INPUTS SIDE RADIUS RATE PASSES
# where FILE has rows of INPUTS doubles; the answer is the seconds of processor time
# that training took.
suppressMessages(library(kohonen))

read_rows <- function(path, inputs) {
  values <- readBin(path, "double", file.size(path) / 8)
  matrix(values, ncol = inputs, byrow = TRUE)
}

answer <- function(path, inputs, side, radius, rate, passes) {
  rows <- read_rows(path, inputs)
  grid <- somgrid(side, side, topo = "rectangular", neighbourhood.fct = "bubble")
  start <- matrix(runif(side * side * inputs), ncol = inputs)
  time <- system.time(
    som(rows, grid = grid, rlen = passes, alpha = c(rate, rate), radius = c(radius, radius),
        init = start, mode = "online", keep.data = FALSE)
  )
  time[["user.self"]] + time[["sys.self"]]
}

requests <- file("stdin", "r")
while (length(line <- readLines(requests, 1)) > 0) {
  word <- strsplit(line, " ")[[1]]
  number <- as.numeric(word[-1])
  seconds <- answer(word[1], number[1], number[2], number[3], number[4], number[5])
  cat(format(seconds, digits = 12), "\n", sep = "")
  flush(stdout())
}
