# The model `project` of make_model.py on vectors, an element for each iteration.
# usage: Rscript project.R normal|mixed ITERATIONS
arguments <- commandArgs(trailingOnly = TRUE)
n <- as.integer(arguments[2])
set.seed(1)
normal <- function() rnorm(n, 100, 15)
if (arguments[1] == "mixed") {
  u <- runif(n)
  triangular <- ifelse(u < 0.5, 60 + 40 * sqrt(2 * u), 140 - 40 * sqrt(2 * (1 - u)))
  x <- list(normal(), rgamma(n, 2.5, scale = 40), rbeta(n, 2, 5) * 350, triangular, 60 + 80 * rbeta(n, 3, 3),
            rpois(n, 4) * 25, rt(n, 7) * 12 + 100, rweibull(n, 2, 113), rlnorm(n, 4.59, 0.15), rbinom(n, 200, 0.5))
} else {
  x <- lapply(1:10, function(i) normal())
}
volume <- x[[1]] * 10
price <- x[[3]] / 10
npv <- 0
total <- 0
worst <- Inf
for (year in 1:10) {
  revenue <- volume * price
  cost <- volume * (x[[5]] / 20 * (1 + x[[6]] / 10000)^year)
  margin <- revenue - cost - (x[[7]] * 5 + x[[8]] * year / 10)
  cash <- margin - pmax(0, margin * x[[10]] / 400) - x[[9]] * (if (year <= 2) 20 else 2)
  npv <- npv + cash / 1.1^year
  total <- total + revenue
  worst <- pmin(worst, cash)
  volume <- volume * (1 + x[[2]] / 5000)
  price <- price * (1 + x[[4]] / 10000)
}
for (sample in list(npv, total, worst)) cat(mean(sample), median(sample), "\n")
