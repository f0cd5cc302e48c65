#include "schema/table_library.h"

#include <charconv>

#include "schema/table_ast.h"
#include "schema/table_texts.h"
#include "schema/text_cut.h"

namespace db {

namespace {

ClassKind kindOf(std::string_view word)
{
    if (word == "entity")
        return ClassKind::Entity;
    if (word == "table")
        return ClassKind::Table;
    if (word == "control")
        return ClassKind::Control;
    if (word == "header")
        return ClassKind::Header;
    if (word != "object")
        tableError("kind", word);
    return ClassKind::Object;
}

// "= NAME|OTHER number kind marker": a class for each name
void addClasses(TableLibrary& library, std::string_view heading, std::string_view text)
{
    std::string_view names = cutAt(heading, ' ');
    const std::string_view number = cutAt(heading, ' ');
    const std::string_view kind = cutAt(heading, ' ');
    int typeNumber = 0;
    std::from_chars(number.data(), number.data() + number.size(), typeNumber);
    while (!names.empty()) {
        const std::string_view name = cutAt(names, '|');
        const auto* made = new ClassDef(name, typeNumber, kindOf(kind), trimmed(heading));
        library.classes[name] = {text, made};
        library.all.push_back(made);
        typeNumber = 0; // the number leads to the first name
    }
}

bool isHeading(std::string_view line)
{
    return line.starts_with("= ") || line.starts_with("struct ");
}

void addEntry(TableLibrary& library, std::string_view heading, std::string_view text)
{
    heading = trimmed(heading.substr(0, heading.find(';')));
    if (heading.starts_with("= "))
        return addClasses(library, heading.substr(2), text);
    heading.remove_prefix(7);
    library.structs[heading.substr(0, heading.find(':'))] = {text};
}

void addTable(TableLibrary& library, std::string_view table)
{
    std::string_view heading;
    const char* begin = table.data();
    const char* const end = table.data() + table.size();
    std::string_view rest = table;
    while (!rest.empty()) {
        const std::string_view line = cutAt(rest, '\n');
        if (!isHeading(line))
            continue;
        if (!heading.empty())
            addEntry(library, heading, {begin, static_cast<std::size_t>(line.data() - begin)});
        heading = line;
        begin = line.data() + line.size();
    }
    if (!heading.empty())
        addEntry(library, heading, {begin, static_cast<std::size_t>(end - begin)});
}

} // namespace

const TableLibrary& tableLibrary()
{
    static const TableLibrary* const library = [] {
        auto* made = new TableLibrary; // never destroyed: classes outlive other statics
        for (const std::string_view table : tableTexts())
            addTable(*made, table);
        return made;
    }();
    return *library;
}

const ClassDef* classNamed(std::string_view name)
{
    const auto& classes = tableLibrary().classes;
    const auto found = classes.find(name);
    return found == classes.end() ? nullptr : found->second.classDef;
}

const ClassDef* classNumbered(int typeNumber)
{
    static const std::vector<const ClassDef*> byNumber = [] {
        std::vector<const ClassDef*> numbers(512);
        for (const ClassDef* each : tableLibrary().all)
            if (each->typeNumber() > 0)
                numbers[static_cast<std::size_t>(each->typeNumber())] = each;
        return numbers;
    }();
    const bool known = typeNumber > 0 && typeNumber < static_cast<int>(byNumber.size());
    return known ? byNumber[static_cast<std::size_t>(typeNumber)] : nullptr;
}

std::span<const ClassDef* const> allClasses()
{
    return tableLibrary().all;
}

} // namespace db
