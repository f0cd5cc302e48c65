#pragma once

#include <base/tarvik_config.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_host_application_services.h>
#include <dwg/dwg_codec.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_ax_doc_lock.h>
#include <ed/tv_editor.h>
#include <rx/tv_rx_dictionary.h>

#include "drawings.h"
#include "temp_folder.h"

/// Notes what it is told.
class NotingReactor : public TvEditorReactor
{
public:
    void endDwgOpen(const TvChar* path, TvDbDatabase* database) override
    {
        opened = database;
        note("opened ", path);
    }
    void saveComplete(TvDbDatabase*, const TvChar* path) override { note("saved ", path); }
    void commandWillStart(const TvChar* name) override { note("starts ", name); }
    void commandEnded(const TvChar* name) override { note("ended ", name); }
    void commandCancelled(const TvChar* name) override { note("cancelled ", name); }
    void sysVarChanged(const TvChar* name) override { note("changed ", name); }
    void documentClosing(TvDbDatabase* database) override
    {
        closing = database;
        told.push_back("closing");
    }

    std::vector<std::string> told;
    TvDbDatabase* opened = nullptr;
    TvDbDatabase* closing = nullptr;

private:
    void note(const char* what, const TvChar* name)
    {
        told.push_back(what + base::PathRules::native().fileNameOf(TvString(name).view()).utf8());
    }
};

/// An editor with a reactor, a configuration and a folder of drawings.
class EditorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        dwg::install();
        tvrxSysRegistry()->atPut(kTvEditor, &editor);
        editor.addReactor(&reactor);
        tarvSetConfig(&config);
        for (const char* name : {"a.dwg", "b.dwg"}) {
            const std::vector<std::uint8_t> bytes = minimalDrawing("line-ac1032.dwg");
            folder.write(name, {bytes.begin(), bytes.end()});
        }
    }
    void TearDown() override
    {
        tarvSetConfig(nullptr);
        tvrxSysRegistry()->remove(kTvEditor);
        tvdbHostApplicationServices()->setWorkingDatabase(nullptr);
    }

    TempFolder folder;
    TarvikConfig config{folder.file("config")};
    TvEditor editor;
    NotingReactor reactor;
};
