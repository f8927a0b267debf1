#pragma once
// A harness may give the corpus driver texts to start its mutations from.
#include <string>
#include <vector>

std::vector<std::string> QuorvaneFuzzSeeds();
