#include <cstdlib>

namespace {

// The same cases in every run; RC_PARAMS in the environment still wins, for a longer search.
[[maybe_unused]] const int kSeeded = ::setenv("RC_PARAMS", "seed=20150", 0);

} // namespace
