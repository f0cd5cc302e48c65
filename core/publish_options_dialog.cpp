#include "core/publish_options_dialog.h"

namespace core {

namespace {

PublishOptionsDialog g_dialog = nullptr;

} // namespace

void setPublishOptionsDialog(PublishOptionsDialog dialog)
{
    g_dialog = dialog;
}

PublishOptionsDialog publishOptionsDialog()
{
    return g_dialog;
}

} // namespace core
