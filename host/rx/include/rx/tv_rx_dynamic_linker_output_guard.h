#pragma once

/// While one of these lives, the linker tells the user of no failure: for modules that may well be
/// missing.
///
/// Its constructors are not inlined: modules export them.
class __attribute__((visibility("default"))) TvRxDynamicLinkerOutputGuard
{
public:
    [[gnu::noinline]] TvRxDynamicLinkerOutputGuard() { count(1); }
    [[gnu::noinline]] TvRxDynamicLinkerOutputGuard(const TvRxDynamicLinkerOutputGuard&)
    {
        count(1);
    }
    /// Each stands for itself: nothing is taken over.
    [[gnu::noinline]] TvRxDynamicLinkerOutputGuard& operator=(const TvRxDynamicLinkerOutputGuard&)
    {
        return *this;
    }
    ~TvRxDynamicLinkerOutputGuard() { count(-1); }

    static bool isQuiet();

private:
    static void count(int change);
};
