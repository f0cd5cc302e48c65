# Writes OUTPUT: a C++ file with the text of every *.table in the folder TABLES.
file(GLOB tables RELATIVE ${TABLES} ${TABLES}/*.table)
list(SORT tables)
set(literals "")
foreach(table IN LISTS tables)
    file(READ ${TABLES}/${table} text)
    string(APPEND literals "    R\"TABLE(${text})TABLE\",\n")
endforeach()
file(WRITE ${OUTPUT} "// Made from schema/tables/*.table.
#include \"schema/table_texts.h\"

namespace db {

namespace {
constexpr std::string_view kTexts[] = {
${literals}};
} // namespace

std::span<const std::string_view> tableTexts()
{
    return kTexts;
}

} // namespace db
")
