#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace gs {

/// One value of a body as its modeler wrote it.
struct ModelerValue {
    enum class Kind : std::uint8_t {
        Word,     ///< a name or a text
        NamePart, ///< of a name of several words, whose last one is a Word
        Number,
        Flag,    ///< `number` is 1 for what text calls "reversed", 0 for "forward"
        Pointer, ///< `number` is that of another record, negative for none
        Open,    ///< of a part that others may refer to
        Close,
        End, ///< of a record
    };
    Kind kind = Kind::End;
    double number = 0;     ///< always finite
    std::string_view word; ///< in place
};

/// Reads the values of a body, one after the other. Text and binary give the same ones.
class ModelerTokens
{
public:
    virtual ~ModelerTokens() = default;

    /// False at the end of the data, and where they cannot be understood any more.
    virtual bool next(ModelerValue& out) = 0;
    /// Of the next value; only to be asked where no value of several numbers is half read, which is
    /// never at a name, an end or a part's begin.
    std::size_t position() const { return m_position; }
    virtual void seek(std::size_t position) { m_position = position; }

protected:
    std::size_t m_position = 0;
};

/// Values between blanks. Before the records stand versions, units and the maker's name, which are
/// given as values too.
class ModelerText final : public ModelerTokens
{
public:
    /// @param text  must outlive this.
    explicit ModelerText(std::string_view text) : m_text(text) {}
    bool next(ModelerValue& out) override;
    /// Goes to the first record: its name is the first word that a pointer follows.
    void passHead();

private:
    std::string_view counted(std::string_view token);

    std::string_view m_text;
};

/// Values with a byte before each that tells its kind.
class ModelerBytes final : public ModelerTokens
{
public:
    /// Finds how wide whole numbers are, and stands at the first record then; at the end of bytes
    /// that do not begin as such data do.
    /// @param bytes  must outlive this.
    explicit ModelerBytes(std::span<const std::uint8_t> bytes);
    bool next(ModelerValue& out) override;
    void seek(std::size_t position) override;

    /// Whether bytes begin as a body in binary does.
    static bool recognises(std::span<const std::uint8_t> bytes);

private:
    bool passHead(std::size_t from, std::size_t width);
    bool take(std::size_t count, std::uint64_t& out);
    bool takeWord(std::size_t lengthSize, ModelerValue& out);
    bool takeWhole(std::size_t size, ModelerValue::Kind kind, ModelerValue& out);
    bool takeReals(std::size_t count, ModelerValue& out);
    bool nextPending(ModelerValue& out);

    std::span<const std::uint8_t> m_bytes;
    std::size_t m_width = 4;                   // of whole numbers and pointers, in bytes
    std::array<double, 3> m_reals{};           // of the value that is being given
    std::size_t m_realCount = 0, m_realAt = 0; // m_realAt: the next one
    ModelerText m_literal{std::string_view{}}; // text within, its values are given as such
};

/// The reader that fits the data: binary by how they begin, text otherwise.
std::unique_ptr<ModelerTokens> modelerTokens(std::span<const std::uint8_t> body);

} // namespace gs
