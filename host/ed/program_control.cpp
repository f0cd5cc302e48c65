#include "ed/program_control.h"

namespace ed {

namespace {

ProgramControl* g_control = nullptr;

} // namespace

ProgramControl* programControl()
{
    return g_control;
}

void setProgramControl(ProgramControl* control)
{
    g_control = control;
}

} // namespace ed

void tarvUpdateLayoutBar(TvApDocument* document)
{
    if (ed::ProgramControl* program = ed::programControl(); program && document)
        program->layoutsChanged(*document);
}
