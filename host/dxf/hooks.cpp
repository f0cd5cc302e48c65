#include "hooks.h"

#include "hook_lists.h"

namespace dxf {

const Hook* hookNamed(std::string_view name)
{
    for (const auto hooks :
         {entityHooks(), textHooks(), curveHooks(), hatchHooks(), tableHooks(), tableStyleHooks(),
          acadTableHooks(), objectHooks(), fieldHooks(), solidHooks()})
        for (const Hook& hook : hooks)
            if (hook.name == name)
                return &hook;
    return nullptr;
}

} // namespace dxf
