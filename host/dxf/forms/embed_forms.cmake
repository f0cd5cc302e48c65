# Writes OUTPUT: a C++ file with the text of every *.form in the folder FORMS.
file(GLOB forms RELATIVE ${FORMS} ${FORMS}/*.form)
list(SORT forms)
set(literals "")
foreach(form IN LISTS forms)
    file(READ ${FORMS}/${form} text)
    string(APPEND literals "    R\"FORM(${text})FORM\",\n")
endforeach()
file(WRITE ${OUTPUT} "// Made from forms/*.form.
#include \"form_text.h\"

namespace dxf {

namespace {
constexpr std::string_view kTexts[] = {
${literals}};
} // namespace

std::span<const std::string_view> formTexts()
{
    return kTexts;
}

} // namespace dxf
")
