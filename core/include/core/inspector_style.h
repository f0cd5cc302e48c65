#pragma once

#include <ed/system_variables.h>

namespace core {

/// While it lives, the property inspector draws itself as dialogs show it. To be made before the
/// dialog is.
class [[nodiscard]] InspectorStyle
{
public:
    InspectorStyle() { set(kInDialog); }
    ~InspectorStyle() { set(kUsual); }
    InspectorStyle(const InspectorStyle&) = delete;
    InspectorStyle& operator=(const InspectorStyle&) = delete;

private:
    static constexpr std::int16_t kUsual = 0, kInDialog = 2;
    static void set(std::int16_t style) { ed::setVariable(u"_KV_INSPECTORCONTROLSTYLES", style); }
};

} // namespace core
