#pragma once

#include <resources/dialogs.h>

namespace text {

/// What a resource module exports besides its texts: the dialog of a number, or null. It lies in
/// the module, and goes with it.
constexpr const char* kResourceDialogName = "tarvResourceDialog";
using ResourceDialog = const DialogTemplate* (*)(int number);

} // namespace text
