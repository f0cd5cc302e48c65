#include "editor_scene.h"

namespace {

using Told = std::vector<std::string>;

TEST_F(EditorTest, IsFoundInTheRegistryAndDerivesAsItShould)
{
    EXPECT_EQ(tvedEditor(), &editor);
    EXPECT_TRUE(tvrxSysRegistry()->at(u"TvEditor")->isKindOf(TvEditor::desc()));
    EXPECT_TRUE(reactor.isKindOf(TvRxEventReactor::desc()));
    EXPECT_TRUE(reactor.isKindOf(TvEditorReactor::desc()));
    tvrxSysRegistry()->remove(kTvEditor);
    EXPECT_EQ(tvedEditor(), nullptr);
}

TEST_F(EditorTest, ReactorsAreToldOnceAndInTheirOrder)
{
    std::vector<int> order;
    struct Numbered : TvEditorReactor {
        Numbered(std::vector<int>& list, int given) : order(list), number(given) {}
        void commandEnded(const TvChar*) override { order.push_back(number); }
        std::vector<int>& order;
        int number;
    } first(order, 1), second(order, 2);
    editor.addReactor(&first);
    editor.addReactor(&second);
    editor.addReactor(&first);
    editor.addReactor(nullptr);
    editor.fireCommandEnded(u"VIEW");
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    editor.removeReactor(&first);
    editor.fireCommandEnded(u"VIEW");
    EXPECT_EQ(order, (std::vector<int>{1, 2, 2}));
    editor.removeReactor(&second);
    editor.removeReactor(&second);
}

TEST_F(EditorTest, AReactorMayTakeItselfAndOthersAwayWhileItIsTold)
{
    struct Leaving : TvEditorReactor {
        Leaving(TvEditor& from, TvEditorReactor*& also) : editor(from), other(also) {}
        void commandEnded(const TvChar*) override
        {
            ++calls;
            editor.removeReactor(this);
            editor.removeReactor(other);
        }
        TvEditor& editor;
        TvEditorReactor*& other;
        int calls = 0;
    };
    TvEditorReactor* other = nullptr;
    Leaving leaving(editor, other);
    NotingReactor after;
    editor.addReactor(&leaving);
    editor.addReactor(&after);
    other = &after;
    editor.fireCommandEnded(u"U");
    editor.fireCommandEnded(u"U");
    EXPECT_EQ(leaving.calls, 1);
    EXPECT_TRUE(after.told.empty()) << "it was taken away before its turn";
}

// Documents

class DocumentTest : public EditorTest
{
protected:
    TvApDocument* open(const char* name, bool readOnly = false)
    {
        TvApDocument* document = nullptr;
        status = manager.openDocument(folder.file(name), readOnly, document);
        return document;
    }
    TvApDocManager manager;
    TvStatusCode status = TvStatus::Ok;
};

TEST_F(DocumentTest, AnOpenedDrawingIsCurrentActiveAndTheWorkingOne)
{
    EXPECT_EQ(manager.documentCount(), 0);
    EXPECT_EQ(manager.curDocument(), nullptr);
    TvApDocument* a = open("a.dwg");
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(manager.documentCount(), 1);
    EXPECT_EQ(manager.curDocument(), a);
    EXPECT_EQ(manager.mdiActiveDocument(), a);
    EXPECT_EQ(tvdbHostApplicationServices()->workingDatabase(), a->database());
    EXPECT_EQ(a->fileName(), folder.file("a.dwg"));
    EXPECT_EQ(a->docTitle(), u"a.dwg");
    EXPECT_FALSE(a->isReadOnly());
    EXPECT_TRUE(a->database()->isDocumentDatabase());
    EXPECT_EQ(reactor.told, (Told{"opened a.dwg"}));
    EXPECT_EQ(reactor.opened, a->database());
}

TEST_F(DocumentTest, AFileThatIsOpenIsNotOpenedTwice)
{
    TvApDocument* a = open("a.dwg");
    open("b.dwg");
    reactor.told.clear();
    EXPECT_EQ(open("a.dwg"), a);
    EXPECT_EQ(manager.documentCount(), 2);
    EXPECT_EQ(manager.mdiActiveDocument(), a);
    EXPECT_TRUE(reactor.told.empty());
    std::filesystem::create_symlink(folder.path() / "a.dwg", folder.path() / "link.dwg");
    EXPECT_EQ(open("link.dwg"), a) << "whatever its name";
    EXPECT_EQ(manager.documentOf(folder.file("b.dwg"))->docTitle(), u"b.dwg");
    EXPECT_EQ(manager.documentOf(folder.file("c.dwg")), nullptr);
}

TEST_F(DocumentTest, AFileIsKnownByAnotherNameAfterASaveMadeItAnew)
{
    std::filesystem::create_symlink(folder.path() / "a.dwg", folder.path() / "link.dwg");
    TvApDocument* a = open("a.dwg");
    const auto before = a->fileIdentity();
    ASSERT_TRUE(before);
    ASSERT_EQ(manager.saveDocument(a), TvStatus::Ok);
    EXPECT_NE(a->fileIdentity(), before);
    EXPECT_EQ(manager.documentOf(folder.file("link.dwg")), a);
    ASSERT_EQ(manager.saveDocument(a, folder.file("other.dwg")), TvStatus::Ok);
    EXPECT_EQ(manager.documentOf(folder.file("link.dwg")), nullptr);
    std::filesystem::create_symlink(folder.path() / "other.dwg", folder.path() / "link2.dwg");
    EXPECT_EQ(manager.documentOf(folder.file("link2.dwg")), a);
}

TEST_F(DocumentTest, OfAFileThatWasReplacedIsNotTakenForAnyOther)
{
    TvApDocument* a = open("a.dwg", true);
    // The file goes on under another name, and another one takes its place.
    std::filesystem::rename(folder.path() / "a.dwg", folder.path() / "former.dwg");
    std::filesystem::copy_file(folder.path() / "b.dwg", folder.path() / "a.dwg");
    EXPECT_EQ(manager.documentOf(folder.file("former.dwg")), nullptr);
    EXPECT_EQ(manager.documentOf(folder.file("a.dwg")), a);
}

TEST_F(DocumentTest, AreWalkedInTheOrderOfTheirOpening)
{
    TvApDocument* b = open("b.dwg");
    TvApDocument* a = open("a.dwg");
    manager.activateDocument(b);
    const std::unique_ptr<TvApDocumentIterator> each(manager.newTvApDocumentIterator());
    std::vector<TvApDocument*> walked;
    for (; !each->done(); each->step())
        walked.push_back(each->document());
    EXPECT_EQ(walked, (std::vector{b, a}));
    EXPECT_EQ(each->document(), nullptr);
    EXPECT_EQ(manager.document(a->database()), a);
    EXPECT_EQ(manager.document(nullptr), nullptr);
}

TEST_F(DocumentTest, ACommandMayWorkOnAnotherThanTheActiveOne)
{
    TvApDocument* a = open("a.dwg");
    TvApDocument* b = open("b.dwg");
    EXPECT_EQ(manager.setCurDocument(a, 0, false), TvStatus::Ok);
    EXPECT_EQ(manager.curDocument(), a);
    EXPECT_EQ(manager.mdiActiveDocument(), b);
    EXPECT_EQ(tvdbHostApplicationServices()->workingDatabase(), a->database());
    EXPECT_EQ(manager.setCurDocument(b, 1, false), TvStatus::Ok);
    EXPECT_EQ(b->lockCount(), 1);
    manager.unlockDocument(b);
    EXPECT_EQ(manager.setCurDocument(nullptr), TvStatus::InvalidInput);
    EXPECT_EQ(manager.activateDocument(nullptr), TvStatus::InvalidInput);
}

TEST_F(DocumentTest, ThatIsEditedIsInUseUntilItCloses)
{
    TvApDocument* a = open("a.dwg");
    EXPECT_TRUE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("a.dwg")));
    EXPECT_EQ(manager.closeDocument(a), TvStatus::Ok);
    EXPECT_FALSE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("a.dwg")));
    a = open("a.dwg", true);
    EXPECT_TRUE(a->isReadOnly());
    EXPECT_FALSE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("a.dwg")));
}

TEST_F(DocumentTest, OfAFileThatSomebodyElseUsesOpensForLookingOnly)
{
    const TvDbDatabase other(false, true);
    ASSERT_TRUE(db::beginUse(other, folder.file("a.dwg")));
    EXPECT_EQ(open("a.dwg"), nullptr);
    EXPECT_EQ(status, TvStatus::FileInUse);
    EXPECT_EQ(manager.lastFailure().reason(), base::Reason::LockHeld);
    ASSERT_EQ(manager.lastFailure().arguments().size(), 2u) << "who holds it is told";
    EXPECT_FALSE(manager.lastFailure().arguments()[1].isEmpty());
    EXPECT_EQ(manager.documentCount(), 0);
    EXPECT_NE(open("a.dwg", true), nullptr);
}

TEST_F(DocumentTest, OfAReadOnlyFileOpensForLookingOnly)
{
    std::filesystem::permissions(folder.path() / "a.dwg", std::filesystem::perms(0444));
    EXPECT_EQ(open("a.dwg"), nullptr);
    EXPECT_EQ(status, TvStatus::FileReadOnly);
    EXPECT_NE(open("a.dwg", true), nullptr);
}

TEST_F(DocumentTest, OfAMissingFileOrOneThatIsNoDrawingIsNone)
{
    folder.write("text.dwg", "no drawing");
    EXPECT_EQ(open("none.dwg"), nullptr);
    EXPECT_EQ(status, TvStatus::FileNotFound);
    EXPECT_EQ(open("text.dwg"), nullptr);
    EXPECT_EQ(status, TvStatus::FileNotReadable);
    EXPECT_FALSE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("text.dwg")));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / ".none.dwg.lk"));
    EXPECT_EQ(manager.documentCount(), 0);
    EXPECT_TRUE(reactor.told.empty());
}

TEST_F(DocumentTest, ClosingTellsBeforeItGoesAndTheOneBeforeBecomesActive)
{
    TvApDocument* a = open("a.dwg");
    TvApDocument* b = open("b.dwg");
    TvApDocument* c = manager.newDocument();
    manager.activateDocument(a);
    manager.activateDocument(b);
    reactor.told.clear();
    TvDbDatabase* closing = b->database();
    EXPECT_EQ(manager.closeDocument(b), TvStatus::Ok);
    EXPECT_EQ(reactor.told, (Told{"closing"}));
    EXPECT_EQ(reactor.closing, closing);
    EXPECT_EQ(manager.mdiActiveDocument(), a);
    EXPECT_EQ(manager.curDocument(), a);
    EXPECT_EQ(manager.closeDocument(b), TvStatus::InvalidInput);
    manager.closeDocument(c);
    EXPECT_EQ(manager.mdiActiveDocument(), a) << "closing another changes nothing";
    manager.closeDocument(a);
    EXPECT_EQ(manager.curDocument(), nullptr);
    EXPECT_EQ(tvdbHostApplicationServices()->workingDatabase(), nullptr);
    EXPECT_EQ(manager.setCurDocument(nullptr), TvStatus::Ok);
}

TEST_F(DocumentTest, IsNotClosedWhileItIsLocked)
{
    TvApDocument* a = open("a.dwg");
    {
        const TvAxDocLock outer(a->database());
        EXPECT_EQ(outer.lockStatus(), TvStatus::Ok);
        const TvAxDocLock inner;
        EXPECT_EQ(a->lockCount(), 2) << "locks nest";
        EXPECT_EQ(manager.closeDocument(a), TvStatus::StillInUse);
    }
    EXPECT_EQ(a->lockCount(), 0);
    EXPECT_EQ(manager.unlockDocument(a), TvStatus::NotApplicable);
    EXPECT_EQ(manager.closeDocument(a), TvStatus::Ok);
}

TEST_F(DocumentTest, ADrawingThatIsNoneNeedsNoLock)
{
    const TvDbDatabase side(false, true);
    EXPECT_EQ(TvAxDocLock(&side).lockStatus(), TvStatus::Ok);
    EXPECT_EQ(TvAxDocLock(nullptr).lockStatus(), TvStatus::NoDatabase);
    EXPECT_EQ(TvAxDocLock().lockStatus(), TvStatus::NoDatabase);
}

TEST_F(DocumentTest, ANewOneHasANameToShowAndNoFile)
{
    TvApDocument* first = manager.newDocument();
    TvApDocument* second = manager.newDocument();
    EXPECT_FALSE(first->isNamedDrawing());
    EXPECT_EQ(first->fileName(), u"Drawing1.dwg");
    EXPECT_EQ(second->docTitle(), u"Drawing2.dwg");
    EXPECT_EQ(manager.saveDocument(first), TvStatus::InvalidInput) << "it has no name";
    EXPECT_EQ(manager.saveDocument(first, folder.file("new.dwg")), TvStatus::Ok);
    EXPECT_EQ(first->fileName(), folder.file("new.dwg"));
    EXPECT_TRUE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("new.dwg")));
    EXPECT_EQ(manager.saveDocument(first), TvStatus::Ok);
    EXPECT_EQ(reactor.told, (Told{"saved new.dwg", "saved new.dwg"}));
}

TEST_F(DocumentTest, AReadOnlyOneIsSavedUnderAnotherNameOnly)
{
    TvApDocument* a = open("a.dwg", true);
    EXPECT_EQ(manager.saveDocument(a), TvStatus::FileReadOnly);
    EXPECT_EQ(manager.saveDocument(a, folder.file("copy.dwg")), TvStatus::Ok);
    EXPECT_FALSE(a->isReadOnly()) << "that file is its own";
    EXPECT_EQ(manager.saveDocument(a), TvStatus::Ok);
}

TEST_F(DocumentTest, IsNotSavedOverAnotherOne)
{
    open("a.dwg");
    TvApDocument* b = open("b.dwg");
    EXPECT_EQ(manager.saveDocument(b, folder.file("a.dwg")), TvStatus::FileInUse);
    EXPECT_EQ(b->fileName(), folder.file("b.dwg"));
}

TEST_F(DocumentTest, IsReadByNameAsItIsNow)
{
    TvApDocument* a = open("a.dwg");
    a->database()->setTilemode(!a->database()->tilemode());
    TvDbDatabase copy(false, true), other(false, true);
    ASSERT_EQ(copy.readDbByDocName(folder.file("a.dwg")), TvStatus::Ok);
    EXPECT_EQ(copy.tilemode(), a->database()->tilemode());
    ASSERT_EQ(other.readDwgFile(folder.file("a.dwg")), TvStatus::Ok);
    EXPECT_NE(other.tilemode(), copy.tilemode());
}

TEST_F(DocumentTest, FunctionsOpenThroughTheManager)
{
    TvApDocument* a = OpenDocument(folder.file("a.dwg"));
    ASSERT_NE(a, nullptr);
    EXPECT_FALSE(a->isReadOnly());
    TvApDocument* b = OpenDocumentReadOnly(folder.file("b.dwg"), 1);
    ASSERT_NE(b, nullptr);
    EXPECT_TRUE(b->isReadOnly());
    EXPECT_EQ(OpenDocument(folder.file("none.dwg")), nullptr);
    EXPECT_EQ(tvDocManagerPtr(), &manager);
}

TEST_F(DocumentTest, TheContextIsTheApplicationsWhileNoCommandRuns)
{
    EXPECT_TRUE(manager.isApplicationContext());
    {
        const TvApDocManager::CommandContext outer(manager);
        const TvApDocManager::CommandContext inner(manager);
        EXPECT_FALSE(manager.isApplicationContext());
    }
    EXPECT_TRUE(manager.isApplicationContext());
}

TEST_F(EditorTest, WithoutAManagerNothingOpensAndNothingNeedsALock)
{
    EXPECT_EQ(tvDocManagerPtr(), nullptr);
    EXPECT_EQ(OpenDocument(folder.file("a.dwg")), nullptr);
    const TvDbDatabase side(false, true);
    EXPECT_EQ(TvAxDocLock(&side).lockStatus(), TvStatus::Ok);
}

TEST_F(EditorTest, TheManagersEndClosesItsDocuments)
{
    {
        TvApDocManager manager;
        TvApDocument* document = nullptr;
        manager.openDocument(folder.file("a.dwg"), false, document);
        manager.lockDocument(document);
        reactor.told.clear();
    }
    EXPECT_EQ(reactor.told, (Told{"closing"}));
    EXPECT_FALSE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("a.dwg")));
}

} // namespace
