# Trains and searches maps with the kohonen package. A request is a line
#   MODE FILE INPUTS SIDE RADIUS RATE PASSES
# where FILE has rows of INPUTS doubles; the answer is the seconds of processor time that this took:
# training in the mode "online" or "pbatch", or, with "map", finding the winner of each row.
suppressMessages(library(kohonen))

read_rows <- function(path, inputs) {
  values <- readBin(path, "double", file.size(path) / 8)
  matrix(values, ncol = inputs, byrow = TRUE)
}

train <- function(mode, rows, side, start, radius, rate, passes) {
  grid <- somgrid(side, side, topo = "rectangular", neighbourhood.fct = "bubble")
  som(rows, grid = grid, rlen = passes, alpha = c(rate, rate), radius = c(radius, radius),
      init = start, mode = mode, cores = 1, keep.data = FALSE)
}

# As much of a map as a search looks at; a whole one has the distances between all of its units.
search <- function(rows, start, passes) {
  model <- structure(list(codes = list(start), whatmap = 1, user.weights = 1, distance.weights = 1,
                          dist.fcts = "sumofsquares", maxNA.fraction = 0), class = "kohonen")
  for (n in seq_len(passes)) map(model, rows)
}

answer <- function(mode, path, inputs, side, radius, rate, passes) {
  rows <- read_rows(path, inputs)
  start <- matrix(runif(side * side * inputs), ncol = inputs)
  time <- system.time(
    if (mode == "map") search(rows, start, passes)
    else train(mode, rows, side, start, radius, rate, passes)
  )
  time[["user.self"]] + time[["sys.self"]]
}

requests <- file("stdin", "r")
while (length(line <- readLines(requests, 1)) > 0) {
  word <- strsplit(line, " ")[[1]]
  number <- as.numeric(word[-(1:2)])
  seconds <- answer(word[1], word[2], number[1], number[2], number[3], number[4], number[5])
  cat(format(seconds, digits = 12), "\n", sep = "")
  flush(stdout())
}
