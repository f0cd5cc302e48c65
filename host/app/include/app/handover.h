#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <base/tv_string.h>

namespace app {

/// What a second start hands to the program that runs already.
struct Handover {
    std::string activation;      ///< the desktop's token that lets the window come to the front
    std::vector<TvString> files; ///< absolute
};

/// As bytes: the length in four bytes (little endian), then texts that end in NUL: the protocol's
/// name, the token, each file in the system's own bytes. What does not fit in is left out.
std::string handoverBytes(const Handover& handover);

/// Takes such bytes in as they come. Whoever sends may be anybody: nothing beyond the limits is
/// kept.
class HandoverReader
{
public:
    static constexpr std::size_t kMostBytes = 1 << 20;
    static constexpr std::size_t kMostFiles = 1000;

    enum class State { Reading, Done, Refused };
    State feed(std::string_view bytes);
    State state() const { return m_state; }
    /// Of a reader that is done.
    const Handover& handover() const { return m_handover; }

private:
    State parse();
    std::string m_bytes;
    State m_state = State::Reading;
    Handover m_handover;
};

} // namespace app
