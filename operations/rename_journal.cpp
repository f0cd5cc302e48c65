#include "operations/rename_journal.h"

#include <charconv>

#include <base/atomic_replace.h>
#include <base/path_rules.h>
#include <base/tv_db_handle.h>

namespace operations {

namespace {

constexpr std::string_view kFirstLine = "kvsheetset-rename 1";
constexpr std::uint64_t kLargest = 256u << 20; // bytes of a journal that is read
constexpr std::size_t kTokenDigits = 32;
constexpr std::string_view kHex = "0123456789ABCDEF";

bool isPlain(TvChar unit)
{
    return unit > u' ' && unit != u'%' && unit != 0x7F && (unit < 0xD800 || unit > 0xDFFF);
}

std::string escaped(const TvString& text)
{
    std::string out;
    for (const TvChar unit : text.view()) {
        if (isPlain(unit)) {
            out += TvString(std::u16string_view(&unit, 1)).utf8();
            continue;
        }
        out += '%';
        for (int shift = 12; shift >= 0; shift -= 4)
            out += kHex[(unit >> shift) & 0xF];
    }
    return out;
}

bool unescape(std::string_view field, TvString& out)
{
    const TvString text(field);
    const std::u16string_view units = text.view();
    std::u16string made;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] != u'%') {
            made += units[i];
            continue;
        }
        std::uint64_t unit = 0;
        if (units.size() - i < 5 || !base::parseHex(units.substr(i + 1, 4), unit))
            return false;
        made += static_cast<TvChar>(unit);
        i += 4;
    }
    out = TvString(made);
    return true;
}

std::string hex(std::uint64_t value)
{
    return base::hexText(value).utf8();
}

template <class... Fields>
void addLine(std::string& text, const Fields&... fields)
{
    bool isFirst = true;
    ((text += std::exchange(isFirst, false) ? "" : "\t", text += fields), ...);
    text += '\n';
}

std::string endOf(std::string_view text)
{
    const base::ContentHash hash = base::hashOf(std::as_bytes(std::span(text)));
    std::string line;
    addLine(line, std::string("end"), hex(hash.low), hex(hash.high));
    return line;
}

/// Reads the fields of one line, one after the other.
class Fields
{
public:
    explicit Fields(std::string_view line) : m_rest(line) {}
    std::string_view raw()
    {
        if (m_isOver) {
            m_isBad = true;
            return {};
        }
        const std::size_t tab = m_rest.find('\t');
        const std::string_view field = m_rest.substr(0, tab);
        m_isOver = tab == std::string_view::npos;
        m_rest = m_isOver ? std::string_view() : m_rest.substr(tab + 1);
        return field;
    }
    TvString text()
    {
        TvString out;
        m_isBad = !unescape(raw(), out) || m_isBad;
        return out;
    }
    int number()
    {
        const std::string_view field = raw();
        int out = 0;
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), out);
        m_isBad = m_isBad || error != std::errc() || end != field.data() + field.size();
        return out;
    }
    base::ContentHash hash()
    {
        base::ContentHash out;
        for (std::uint64_t* half : {&out.low, &out.high})
            m_isBad = !base::parseHex(TvString(raw()).view(), *half) || m_isBad;
        return out;
    }
    /// All fields made sense, and there are no more.
    bool isGood() const { return !m_isBad && m_isOver; }

private:
    std::string_view m_rest;
    bool m_isOver = false;
    bool m_isBad = false;
};

bool isToken(std::string_view text)
{
    return text.size() == kTokenDigits &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool readLine(std::string_view line, RenameJournal& into)
{
    Fields fields(line);
    const std::string_view kind = fields.raw();
    if (kind == "token") {
        into.token = fields.raw();
        return fields.isGood() && isToken(into.token);
    }
    if (kind == "stage") {
        const int stage = fields.number();
        into.stage = static_cast<RenameStage>(stage);
        return fields.isGood() && stage >= static_cast<int>(RenameStage::Staging) &&
               stage <= static_cast<int>(RenameStage::Done);
    }
    if (kind == "before") {
        into.before = fields.hash();
        return fields.isGood();
    }
    if (kind == "drawing") {
        RenameJournal::Drawing drawing{fields.text(), fields.text(), fields.number() != 0,
                                       fields.hash()};
        const base::PathRules& rules = base::PathRules::native();
        const bool isSound =
            fields.isGood() && rules.isAbsolute(drawing.oldPath.view()) &&
            rules.folderOf(drawing.oldPath.view()) == rules.folderOf(drawing.newPath.view());
        into.drawings.push_back(std::move(drawing));
        return isSound;
    }
    if (kind != "sheet")
        return false;
    into.sheets.push_back({fields.text(), fields.text(), fields.text(), fields.text(),
                           fields.text(), fields.number(), fields.text(), fields.text(),
                           fields.text()});
    return fields.isGood();
}

std::string besideDrawing(const TvString& path, const std::string& name)
{
    const base::PathRules& rules = base::PathRules::native();
    return base::nativePath(
        rules.join(rules.folderOf(path.view()).view(), TvString(name.c_str()).view()));
}

TvString besideSet(const TvString& setPath, const TvChar* ending)
{
    const base::PathRules& rules = base::PathRules::native();
    const TvString name = TvString(u".") + rules.fileNameOf(setPath.view()) + ending;
    return rules.join(rules.folderOf(setPath.view()).view(), name.view());
}

} // namespace

std::string RenameJournal::stagedPath(std::size_t drawing) const
{
    return besideDrawing(drawings[drawing].oldPath,
                         ".kvrename-" + token + "-" + std::to_string(drawing) + ".new");
}

std::string RenameJournal::asidePath(std::size_t drawing) const
{
    return besideDrawing(drawings[drawing].oldPath,
                         ".kvrename-" + token + "-" + std::to_string(drawing) + ".old");
}

TvString renameJournalPath(const TvString& setPath)
{
    return besideSet(setPath, u".rename");
}

TvString renameUndoPath(const TvString& setPath)
{
    return besideSet(setPath, u".renamed");
}

std::string journalText(const RenameJournal& journal)
{
    std::string text;
    addLine(text, std::string(kFirstLine));
    addLine(text, "token", journal.token);
    addLine(text, "stage", std::to_string(static_cast<int>(journal.stage)));
    addLine(text, "before", hex(journal.before.low), hex(journal.before.high));
    for (const RenameJournal::Drawing& each : journal.drawings)
        addLine(text, "drawing", escaped(each.oldPath), escaped(each.newPath),
                each.hasNewContent ? "1" : "0", hex(each.newContent.low),
                hex(each.newContent.high));
    for (const RenameJournal::Sheet& each : journal.sheets)
        addLine(text, "sheet", escaped(each.handle), escaped(each.oldNumber),
                escaped(each.newNumber), escaped(each.oldTitle), escaped(each.newTitle),
                std::to_string(each.drawing), escaped(each.layoutHandle), escaped(each.oldLayout),
                escaped(each.newLayout));
    return text + endOf(text);
}

std::optional<RenameJournal> parseJournal(std::string_view text)
{
    const std::size_t end = text.rfind("end\t");
    if (end == std::string_view::npos || text.substr(end) != endOf(text.substr(0, end)))
        return std::nullopt;
    text = text.substr(0, end);
    RenameJournal journal;
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        const std::size_t line = text.find('\n');
        if (line == std::string_view::npos || !(isFirst ? text.substr(0, line) == kFirstLine
                                                        : readLine(text.substr(0, line), journal)))
            return std::nullopt;
        text = text.substr(line + 1);
    }
    const int count = static_cast<int>(journal.drawings.size());
    const bool isSound = std::ranges::all_of(journal.sheets, [&](const auto& sheet) {
        return sheet.drawing >= -1 && sheet.drawing < count;
    });
    return isSound && !journal.token.empty() ? std::optional(std::move(journal)) : std::nullopt;
}

base::Status writeJournal(base::FileOps& ops, const TvString& path, const RenameJournal& journal)
{
    const std::string text = journalText(journal);
    base::ReplaceRequest request;
    request.bytes = std::as_bytes(std::span(text));
    return base::replaceFile(ops, path, request);
}

base::Result<RenameJournal> readJournal(base::FileOps& ops, const TvString& path)
{
    const base::Result<base::FileContent> content = base::readWhole(ops, path, kLargest);
    if (!content)
        return content.status();
    const std::string_view text(reinterpret_cast<const char*>(content->bytes.data()),
                                content->bytes.size());
    if (std::optional<RenameJournal> journal = parseJournal(text))
        return std::move(*journal);
    return base::Status(base::Failure::Damaged, base::Reason::VerifyFailed, {path});
}

} // namespace operations
