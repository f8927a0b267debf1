#pragma once
// The process's one random number generator. Until something seeds it, every run of the program
// draws the same sequence; seeding with a number starts the sequence that number stands for.
namespace quorvane::random {

// A uniform number from 0 up to but not including 1, in single precision.
float Rnd();

// Seeds the generator from `seed`: the same seed always gives the same sequence after it.
void Randomize(double seed);

}  // namespace quorvane::random
