#pragma once

#include <functional>
#include <map>
#include <set>

#include <base/path_rules.h>
#include <base/tarvik_config.h>
#include <db/tv_db_data_adapter.h>
#include <ed/command_line.h>
#include <ed/tarv_sheet_set_internal.h>
#include <ed/tv_editor.h>
#include <ed/user_prompts.h>
#include <rx/module_loader.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_product.h>
#include <rx/tv_rx_dynamic_linker.h>
#include <rx/tv_rx_service.h>
#include <rx/tv_user_messages.h>
#include <sm/kv_db_util.h>

#include "sheet_set_builder.h"

using Trace = std::vector<std::string>;

/// What the parts of the host note, one after the other. What comes and goes without telling
/// anybody, as the internal interface, is noted with what comes next.
class Noted
{
public:
    struct Probe {
        std::string name;
        std::function<bool()> isThere;
        bool wasThere = false;
    };

    void operator()(const std::string& what)
    {
        for (Probe& probe : probes) {
            const bool isThere = probe.isThere();
            if (std::exchange(probe.wasThere, isThere) != isThere)
                trace.push_back("(" + probe.name + (isThere ? " is set)" : " is gone)"));
        }
        trace.push_back(what);
    }
    Trace trace;
    std::vector<Probe> probes = {
        {"internal interface", [] { return tarvGetSheetSetInternal() != nullptr; }}};
};

/// Loads the built modules and the optional ones of a folder, but for those that are said to be
/// missing.
class NotingLoader : public rx::FolderModuleLoader
{
public:
    NotingLoader(Noted& noted, const char* optional)
        : rx::FolderModuleLoader(
              {base::pathFromNative(KV_BUILD_DIR "/modules"),
               base::pathFromNative(std::string(KV_BUILD_DIR) + "/optional-modules/" + optional)}),
          m_noted(noted)
    {
    }
    Handle loaded(const TvString& name) override
    {
        m_noted("is it loaded: " + name.utf8());
        return isMissing(name) ? nullptr : FolderModuleLoader::loaded(name);
    }
    base::Result<Handle> load(const TvString& name) override
    {
        m_noted("load " + name.utf8());
        if (isMissing(name))
            return base::Status(base::Failure::NotFound, base::Reason::ModuleNotFound, {name});
        base::Result<Handle> module = FolderModuleLoader::load(name);
        if (module)
            m_names[*module] = name.utf8();
        return module;
    }
    void free(Handle module) override
    {
        m_noted("free " + (m_names.contains(module) ? m_names[module] : "?"));
        FolderModuleLoader::free(module);
    }
    std::set<std::string> missing;

private:
    bool isMissing(const TvString& name) const { return missing.contains(name.utf8()); }
    Noted& m_noted;
    std::map<Handle, std::string> m_names;
};

class NotingLinker : public TvRxDynamicLinkerImp
{
public:
    NotingLinker(Noted& noted, rx::ModuleLoader& loader)
        : TvRxDynamicLinkerImp(loader), m_noted(noted)
    {
    }
    void registerModule(void* appId) override
    {
        m_noted("register module");
        TvRxDynamicLinkerImp::registerModule(appId);
    }

private:
    Noted& m_noted;
};

class NotingStack : public TvEdCommandStackImp
{
public:
    explicit NotingStack(Noted& noted) : m_noted(noted) {}
    bool addCommand(const TvString& group, const TvString& globalName, const TvString& localName,
                    int flags, TvEdCommandFunction function, TvRxObject* uiContext) override
    {
        m_noted("add " + group.utf8() + " " + globalName.utf8() + " " + localName.utf8() +
                (flags || uiContext ? " with flags" : ""));
        return TvEdCommandStackImp::addCommand(group, globalName, localName, flags, function,
                                               uiContext);
    }
    bool removeGroup(const TvString& group) override
    {
        m_noted("remove " + group.utf8());
        return TvEdCommandStackImp::removeGroup(group);
    }

private:
    Noted& m_noted;
};

class NotingEditor : public TvEditor
{
public:
    explicit NotingEditor(Noted& noted) : m_noted(noted) {}
    void addReactor(TvEditorReactor* reactor) override
    {
        m_noted("add reactor");
        ++reactors;
        TvEditor::addReactor(reactor);
    }
    void removeReactor(TvEditorReactor* reactor) override
    {
        m_noted("remove reactor");
        --reactors;
        TvEditor::removeReactor(reactor);
    }
    int reactors = 0;

private:
    Noted& m_noted;
};

class NotingManager : public TvSmSheetSetMgr
{
public:
    explicit NotingManager(Noted& noted) : m_noted(noted) {}
    int registerEventHandler(TvSmEvents* sink) override
    {
        m_noted("register events");
        return TvSmSheetSetMgr::registerEventHandler(sink);
    }
    bool unregisterEventHandler(int cookie) override
    {
        m_noted("unregister events");
        return TvSmSheetSetMgr::unregisterEventHandler(cookie);
    }

private:
    Noted& m_noted;
};

class NotingServices : public TvRxDictionary
{
public:
    explicit NotingServices(Noted& noted) : m_noted(noted) {}
    TvRxObject* atPut(const TvString& key, TvRxObject* object) override
    {
        m_noted("put service " + key.utf8());
        return TvRxDictionary::atPut(key, object);
    }
    TvRxObject* remove(const TvString& key) override
    {
        m_noted("remove service " + key.utf8());
        return TvRxDictionary::remove(key);
    }

private:
    Noted& m_noted;
};

class NotingAdapters : public TvDbDataAdapterManager
{
public:
    explicit NotingAdapters(Noted& noted) : m_noted(noted) {}
    void registerAdapterProvider(TvDbDataAdapterProvider* provider) override
    {
        m_noted("register adapter provider");
        TvDbDataAdapterManager::registerAdapterProvider(provider);
    }
    void unregisterAdapterProvider(TvDbDataAdapterProvider* provider) override
    {
        m_noted("unregister adapter provider");
        TvDbDataAdapterManager::unregisterAdapterProvider(provider);
    }

private:
    Noted& m_noted;
};

/// A host without a window: everything that the module meets, noting what it is told.
class HostScene : public testing::Test, protected ed::UserPrompts, protected TvUserMessages
{
protected:
    explicit HostScene(const char* optional = "all") : loader(noted, optional) {}

    void SetUp() override
    {
        m_former = sm::environment();
        sm::environment().files = &m_ops;
        sm::environment().manager = &manager;
        tarvSetConfig(&config);
        rx::setModuleLoader(&loader);
        tvdbSetDataAdapterManager(&adapters);
        ed::setUserPrompts(this);
        tvrxSetUserMessages(this);
        TvRxDictionary& registry = *tvrxSysRegistry();
        registry.atPut(kTvRxDynamicLinker, &linker);
        registry.atPut(kTvRegisteredCommands, &stack);
        registry.atPut(kTvEditor, &editor);
        registry.atPut(kTvRxServiceDictionary, &services);
    }
    void TearDown() override
    {
        linker.unloadAll();
        TvRxDictionary& registry = *tvrxSysRegistry();
        for (const TvChar* key :
             {kTvRxDynamicLinker, kTvRegisteredCommands, kTvEditor, kTvRxServiceDictionary})
            registry.remove(key);
        tvrxSetUserMessages(nullptr);
        ed::setUserPrompts(nullptr);
        tvdbSetDataAdapterManager(m_formerAdapters);
        rx::setModuleLoader(nullptr);
        rx::setProduct({}, {});
        tarvSetConfig(nullptr);
        sm::environment() = m_former;
    }
    /// What was noted since the last time.
    Trace told() { return std::exchange(noted.trace, {}); }
    /// Types a command.
    void type(const TvString& command)
    {
        line.post(command + u"\n");
        line.work();
    }
    TvSmDatabase* made(const char* name)
    {
        TvSmDatabase* database = manager.createDatabase(folder.file(name), u"", true);
        EXPECT_TRUE(database && database->save(0));
        return database;
    }

    Noted noted;
    TempFolder folder;
    TarvikConfig config{folder.file("config")};
    NotingManager manager{noted};
    NotingLoader loader;
    NotingLinker linker{noted, loader};
    NotingStack stack{noted};
    NotingEditor editor{noted};
    NotingServices services{noted};
    NotingAdapters adapters{noted};
    ed::CommandLine line;
    Trace said;  ///< at the command line: number and argument
    Trace shown; ///< message boxes and questions: numbers
    std::vector<TvString> answers;

private:
    int askText(const TvString&, bool, TvString& out) override { return answer("prompt", out); }
    int askFiles(const FileQuestion&, std::vector<TvString>& out) override
    {
        out.resize(1);
        return answer("dialog", out[0]);
    }
    int answer(const char* question, TvString& out)
    {
        shown.push_back(question);
        if (answers.empty())
            return ed::kCancelled;
        out = answers.front();
        answers.erase(answers.begin());
        return 5100;
    }
    void print(const TvString&) override {}
    void say(int text, const std::vector<TvString>& arguments) override
    {
        said.push_back(std::to_string(text) + (arguments.empty() ? "" : " " + arguments[0].utf8()));
    }
    Answer show(const Message& message) override
    {
        shown.push_back(std::to_string(message.text));
        return Answer::Ok;
    }

    QuickFileOps m_ops{base::systemFileOps()};
    sm::Environment m_former;
    TvDbDataAdapterManager* m_formerAdapters = tvdbGetDataAdapterManager();
};
