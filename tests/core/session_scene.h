#pragma once

#include <base/tarvik_config.h>
#include <core/session.h>
#include <core/session_host.h>
#include <core/settings.h>
#include <core/watch_table.h>
#include <sm/kv_db_util.h>

#include "sheet_set_builder.h"

/// Notes what each palette is told.
class NotingHost : public core::SessionHost
{
public:
    void ShowSheetSetPalette() override { told.push_back("show"); }
    core::SheetSetPalette* palette(Palette which) override
    {
        if (list && which == Palette::SheetList)
            return list;
        return isThere[static_cast<int>(which)] ? &m_palettes[static_cast<int>(which)] : nullptr;
    }
    void AddDstFileToRecentFileList(const TvString& path) override { recent.push_back(path); }
    TvString GetUserLocalApplicationDataTemplatePath() override { return templates; }
    ed::PaletteSet* paletteSet() override { return palettes; }
    TvString GetUserRoamingDataPath() override { return roaming; }

    std::vector<std::string> told;
    std::vector<TvString> recent;
    TvString templates, roaming;
    ed::PaletteSet* palettes = nullptr;
    core::SheetSetPalette* list = nullptr; ///< in the place of the noting one
    bool isThere[3] = {true, true, true};

private:
    class NotingPalette : public core::SheetSetPalette
    {
    public:
        NotingPalette(NotingHost& host, const char* name) : m_host(host), m_name(name) {}
        void switchDatabase(bool keepState) override
        {
            m_displayed = GetCurrentDatabase();
            note(keepState ? " switch, keep" : " switch, forget");
        }
        TvSmDatabase* displayedDatabase() const override { return m_displayed; }
        void reloadDatabase() override { note(" reload"); }
        void refreshLockState() override { note(" lock"); }
        void updateUiStyle() override { note(" style"); }

    private:
        void note(const char* what) { m_host.told.push_back(m_name + std::string(what)); }
        NotingHost& m_host;
        const char* m_name;
        TvSmDatabase* m_displayed = nullptr; // the manager's
    };
    NotingPalette m_palettes[3] = {{*this, "list"}, {*this, "sheet views"}, {*this, "model views"}};
};

/// A folder of sheet sets, a configuration and a host of its own, with the manager of the process.
class SessionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_former = sm::environment();
        sm::environment().files = &ops;
        tarvSetConfig(&config);
        core::setSessionHost(&host);
    }
    void TearDown() override
    {
        while (!GetSessionDatabases().empty()) {
            SetCurrentDatabase(GetSessionDatabases().back());
            CloseCurrentSheetSet();
        }
        SetCurrentDatabase(nullptr);
        core::setSessionHost(nullptr);
        tarvSetConfig(nullptr);
        sm::environment() = m_former;
    }
    static TvSmSheetSetMgr& manager() { return *KvDbUtil::tarvGetSheetSetMgr(); }
    /// A new set on disk, open.
    TvSmDatabase* made(const char* name)
    {
        TvSmDatabase* database = manager().createDatabase(folder.file(name), u"", true);
        EXPECT_TRUE(database && database->save(0));
        return database;
    }
    void changeName(TvSmDatabase* database, const TvString& name, bool commit = true)
    {
        ASSERT_TRUE(database->lockDb(database));
        database->getSheetSet()->setName(name);
        ASSERT_TRUE(database->unlockDb(database, commit));
    }

    TempFolder folder;
    TarvikConfig config{folder.file("config")};
    NotingHost host;
    QuickFileOps ops{base::systemFileOps()}; ///< of the sheet sets' files

private:
    sm::Environment m_former;
};
