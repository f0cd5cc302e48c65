#include "rx/tv_ed_command_stack.h"

#include <algorithm>

TVRX_DEFINE_MEMBERS(TvEdCommand, TvRxObject)
TVRX_DEFINE_MEMBERS(TvEdCommandStack, TvRxObject)
TVRX_DEFINE_MEMBERS(TvEdCommandStackImp, TvEdCommandStack)

namespace {

/// A command is typed, and ends at the first blank.
bool canBeTyped(const TvString& name)
{
    const std::u16string_view text = name;
    return !text.empty() && text.front() != u'_' &&
           std::ranges::none_of(text, [](TvChar unit) { return unit <= u' ' || unit == 0x7F; });
}

} // namespace

bool TvEdCommandStackImp::addCommand(const TvString& group, const TvString& globalName,
                                     const TvString& localName, int flags,
                                     TvEdCommandFunction function, TvRxObject* uiContext)
{
    if (group.isEmpty() || !canBeTyped(globalName) || !canBeTyped(localName) || !function)
        return false;
    const auto isTaken = [&](const std::unique_ptr<TvEdCommand>& command) {
        return base::equalNoCase(command->m_group, group) &&
               (base::equalNoCase(command->m_globalName, globalName) ||
                base::equalNoCase(command->m_localName, localName));
    };
    if (std::ranges::any_of(m_commands, isTaken))
        return false;
    auto command = std::make_unique<TvEdCommand>();
    command->m_group = group;
    command->m_globalName = globalName;
    command->m_localName = localName;
    command->m_flags = flags;
    command->m_function = function;
    command->m_uiContext = uiContext;
    m_commands.push_back(std::move(command));
    return true;
}

bool TvEdCommandStackImp::removeCmd(const TvString& group, const TvString& globalName)
{
    return std::erase_if(m_commands, [&](const std::unique_ptr<TvEdCommand>& command) {
               return base::equalNoCase(command->m_group, group) &&
                      base::equalNoCase(command->m_globalName, globalName);
           }) != 0;
}

bool TvEdCommandStackImp::removeGroup(const TvString& group)
{
    return std::erase_if(m_commands, [&](const std::unique_ptr<TvEdCommand>& command) {
               return base::equalNoCase(command->m_group, group);
           }) != 0;
}

TvEdCommand* TvEdCommandStackImp::lookup(const TvString& name, TvString TvEdCommand::*which) const
{
    for (auto command = m_commands.rbegin(); command != m_commands.rend(); ++command)
        if (base::equalNoCase((**command).*which, name))
            return command->get();
    return nullptr;
}

TvEdCommand* TvEdCommandStackImp::lookupGlobalCmd(const TvString& name) const
{
    return lookup(name, &TvEdCommand::m_globalName);
}

TvEdCommand* TvEdCommandStackImp::lookupLocalCmd(const TvString& name) const
{
    return lookup(name, &TvEdCommand::m_localName);
}

TvEdCommand* TvEdCommandStackImp::lookupCmd(const TvString& typed) const
{
    std::u16string_view name = typed;
    bool isGlobal = false;
    bool isFirst = false;
    for (; !name.empty() && (name[0] == u'_' || name[0] == u'.'); name.remove_prefix(1))
        (name[0] == u'_' ? isGlobal : isFirst) = true;
    const auto isMeant = [&](const std::unique_ptr<TvEdCommand>& command) {
        return base::equalNoCase(command->m_globalName, name) ||
               (!isGlobal && base::equalNoCase(command->m_localName, name));
    };
    if (isFirst) {
        const auto found = std::ranges::find_if(m_commands, isMeant);
        return found == m_commands.end() ? nullptr : found->get();
    }
    TvEdCommand* local = isGlobal ? nullptr : lookupLocalCmd(TvString(name));
    return local ? local : lookupGlobalCmd(TvString(name));
}

std::vector<TvEdCommand*> TvEdCommandStackImp::commands() const
{
    std::vector<TvEdCommand*> result;
    for (const std::unique_ptr<TvEdCommand>& command : m_commands)
        result.push_back(command.get());
    return result;
}
