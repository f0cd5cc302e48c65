#pragma once

#include <core/current_sheet.h>
#include <core/drawing_info_cache.h>
#include <db/tv_db_host_application_services.h>
#include <dwg/dwg_codec.h>
#include <ed/system_variables.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_editor.h>
#include <rx/tv_rx_dictionary.h>
#include <rx/tv_user_messages.h>

#include "drawing_maker.h"
#include "session_scene.h"

/// Answers questions as it was told, and notes them.
class ScriptedMessages : public TvUserMessages
{
public:
    ScriptedMessages() { tvrxSetUserMessages(this); }
    ~ScriptedMessages() override { tvrxSetUserMessages(nullptr); }
    Answer show(const Message& message) override
    {
        asked.push_back(message);
        return answer;
    }
    std::vector<int> numbers() const
    {
        std::vector<int> all;
        for (const Message& message : asked)
            all.push_back(message.text);
        return all;
    }

    std::vector<Message> asked;
    Answer answer = Answer::Cancel;
};

/// A session with documents: drawings and sets in one folder.
class DocumentTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        dwg::install();
        tvrxSysRegistry()->atPut(kTvEditor, &editor);
        m_documents = std::make_unique<TvApDocManager>();
        sm::environment().layout = &m_layout;
    }
    void TearDown() override
    {
        m_documents.reset();
        tvrxSysRegistry()->remove(kTvEditor);
        tvdbHostApplicationServices()->setWorkingDatabase(nullptr);
        core::freeDrawingInfoCache();
        for (TvSmDatabase* database : openDatabases())
            manager().closeDatabase(database);
        SessionTest::TearDown();
    }
    TvApDocManager& documents() { return *m_documents; }
    /// From here on there is no document manager.
    void closeDocuments() { m_documents.reset(); }
    static std::vector<TvSmDatabase*> openDatabases()
    {
        const std::vector<TvSmDatabase*>& shown = GetSessionDatabases();
        std::vector<TvSmDatabase*> others;
        for (TvSmDatabase* database : itemsOf(manager().getDatabaseEnumerator()))
            if (std::ranges::find(shown, database) == shown.end())
                others.push_back(database);
        return others;
    }
    TvApDocument* opened(const char* name, bool readOnly = false)
    {
        TvApDocument* document = nullptr;
        EXPECT_EQ(documents().openDocument(folder.file(name), readOnly, document), TvStatus::Ok);
        return document;
    }
    static void set(const TvChar* variable, std::int16_t value)
    {
        EXPECT_TRUE(ed::setVariable(variable, value));
    }
    /// One committed change of a set.
    template <class Change>
    static void change(TvSmDatabase* database, Change change)
    {
        ASSERT_TRUE(database->lockDb(database));
        change(*database->getSheetSet());
        ASSERT_TRUE(database->unlockDb(database, true));
    }

    TvEditor editor;
    ScriptedMessages messages;

private:
    core::DocumentLayout m_layout;
    std::unique_ptr<TvApDocManager> m_documents;
};
