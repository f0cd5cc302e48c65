#pragma once

#include <memory>
#include <vector>

#include <rx/tv_rx_object.h>

/// The key of the command stack in the system registry.
constexpr const TvChar* kTvRegisteredCommands = u"TARV_REGISTERED_COMMANDS";

/// What a command runs.
using TvEdCommandFunction = void (*)();

/// One command: its two names, its flags and what it runs.
class TvEdCommand : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvEdCommand)

    const TvString& groupName() const { return m_group; }
    /// The same in every language; typed with a leading underscore.
    const TvString& globalName() const { return m_globalName; }
    /// In the user's language.
    const TvString& localName() const { return m_localName; }
    int commandFlags() const { return m_flags; }
    TvEdCommandFunction functionAddr() const { return m_function; }
    /// Not owned; null: none.
    TvRxObject* uiContext() const { return m_uiContext; }

private:
    friend class TvEdCommandStackImp;
    TvString m_group, m_globalName, m_localName;
    int m_flags = 0;
    TvEdCommandFunction m_function = nullptr;
    TvRxObject* m_uiContext = nullptr;
};

/// The commands of host and modules, in groups that come and go together. Names are equal without
/// regard to case. A name stands for the command that was added last, so that a group shadows those
/// before it, and what it shadowed comes back when it goes.
class TvEdCommandStack : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvEdCommandStack)

    /// @param uiContext  may be null; not owned.
    /// @return false, and nothing added, when a name is empty or holds blanks or control
    ///         characters, the function is null, or the group has a command of either name.
    virtual bool addCommand(const TvString& group, const TvString& globalName,
                            const TvString& localName, int flags, TvEdCommandFunction function,
                            TvRxObject* uiContext = nullptr) = 0;
    /// False when there is none.
    virtual bool removeCmd(const TvString& group, const TvString& globalName) = 0;
    /// Removes the group with its commands. False when there is none.
    virtual bool removeGroup(const TvString& group) = 0;
    /// Null when there is none.
    virtual TvEdCommand* lookupGlobalCmd(const TvString& name) const = 0;
    virtual TvEdCommand* lookupLocalCmd(const TvString& name) const = 0;
    /// What a typed word stands for: "_" before it asks for the global name, "." for the command
    /// that was there first, and else local names come before global ones.
    virtual TvEdCommand* lookupCmd(const TvString& typed) const = 0;
    /// All commands, in the order they were added.
    virtual std::vector<TvEdCommand*> commands() const = 0;
};

/// The host's stack.
class TvEdCommandStackImp : public TvEdCommandStack
{
    TVRX_DECLARE_MEMBERS(TvEdCommandStackImp)

    bool addCommand(const TvString& group, const TvString& globalName, const TvString& localName,
                    int flags, TvEdCommandFunction function,
                    TvRxObject* uiContext = nullptr) override;
    bool removeCmd(const TvString& group, const TvString& globalName) override;
    bool removeGroup(const TvString& group) override;
    TvEdCommand* lookupGlobalCmd(const TvString& name) const override;
    TvEdCommand* lookupLocalCmd(const TvString& name) const override;
    TvEdCommand* lookupCmd(const TvString& typed) const override;
    std::vector<TvEdCommand*> commands() const override;

private:
    TvEdCommand* lookup(const TvString& name, TvString TvEdCommand::*which) const;
    std::vector<std::unique_ptr<TvEdCommand>> m_commands; // in the order they were added
};
