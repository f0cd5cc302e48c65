#pragma once

/// What a module and the host know of each other: two functions that each module exports, and the
/// messages that the host sends.
namespace TvRx {

/// The messages of a module's life. A module answers those that it does not know with kRetOk.
enum Message : int {
    kInitAppMsg = 1,   ///< Loaded: register what is yours. Any answer but kRetOk unloads it.
    kUnloadAppMsg = 2, ///< About to be unloaded: take back what was registered.
    kLoadDwgMsg = 3,   ///< A document was opened.
    kUnloadDwgMsg = 4, ///< A document closes.
    kInvkSubrMsg = 5,  ///< A function that the module registered is called.
    kLastMsg = 15,     ///< Numbers above are no messages.
};

enum AppRetCode : int { kRetOk = 0, kRetError = 3 };

/// The version of the interface between host and modules. A module of another version is not
/// started: layouts of classes may differ.
constexpr int kApiVersion = 1;

/// The names of the two exports.
constexpr const char* kEntryPointName = "tvrxEntryPoint";
constexpr const char* kApiVersionName = "tvrxGetApiVersion";

/// @param appId  what the linker knows the module by.
using EntryPoint = int (*)(int message, void* appId);
using ApiVersion = int (*)();

} // namespace TvRx

/// Put before what a module exports by name.
#define TVRX_EXPORT extern "C" __attribute__((visibility("default")))
