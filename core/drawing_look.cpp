#include <core/drawing_look.h>

#include <algorithm>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/file_open_info_tip_manager.h>
#include <ed/tv_ap_doc_manager.h>
#include <sm/tv_sm_file_reference.h>

#include "drawing_info_reader.h"
#include "silent_folders.h"

namespace core {

namespace {

constexpr int kTries = 6, kDelayMs = 500;

template <class Visit>
void forEachDocument(Visit visit)
{
    if (!tvDocManagerPtr())
        return;
    const std::unique_ptr<TvApDocumentIterator> each(tvDocManagerPtr()->newTvApDocumentIterator());
    for (; !each->done(); each->step())
        visit(*each->document());
}

/// Says of which folder something is asked, while it is.
std::unique_ptr<AskedFolder> asking(const TvString& path)
{
    return std::make_unique<AskedFolder>(folderOfNative(base::nativePath(path)));
}

void findPlace(const DrawingLook::Question& question, DrawingFacts& facts)
{
    for (const TvString& place : question.places) {
        const auto asked = asking(place);
        if (!KvFileSystem::pathFileExists(place))
            continue;
        facts.resolved = place;
        facts.isFile = KvFileSystem::isFileExisting(place);
        return;
    }
}

void askForFile(DrawingFacts& facts)
{
    const auto asked = asking(facts.stored);
    facts.isThere = KvFileSystem::isFileExisting(facts.stored, kTries, kDelayMs);
    facts.isInUse = CFileOpenInfoTipManager::IsInfoFileExists(facts.stored);
    if (facts.isInUse)
        facts.isUserKnown =
            CFileOpenInfoTipManager::GetInfoFromHideFile(facts.stored, facts.user, facts.machine);
}

/// By name first, and only then by the file: only the one that is meant is asked about.
TvString documentWith(const TvString& path,
                      const std::vector<DrawingLook::Question::OpenDrawing>& documents)
{
    using OpenDrawing = DrawingLook::Question::OpenDrawing;
    const auto named = std::ranges::find_if(documents, [&](const OpenDrawing& document) {
        return base::PathRules::native().isSame(document.name, path);
    });
    if (named != documents.end())
        return named->name;
    const std::optional<base::FileIdentity> meant = base::identityOf(path);
    // One that was replaced meanwhile may have left its identity to any other file.
    const auto found = std::ranges::find_if(documents, [&](const OpenDrawing& document) {
        return meant && document.file == meant && KvFileSystem::isSameFile(document.name, path);
    });
    return found == documents.end() ? TvString() : found->name;
}

void readContent(const DrawingLook::Question& question, DrawingFacts& facts)
{
    const TvString& path = facts.path();
    facts.isInfoFresh = question.isKnown && question.knownPath == path &&
                        question.knownTime == facts.modificationTime &&
                        question.knownSize == facts.size;
    if (!facts.isInfoFresh && facts.openDocument.isEmpty())
        facts.info = readDrawingInfo(path, facts.modificationTime, facts.size, true);
}

} // namespace

const TvString& DrawingFacts::path() const
{
    static const TvString none;
    if (isThere)
        return stored;
    return isFile ? resolved : none;
}

DrawingLook::Question DrawingLook::questionAbout(const TvSmFileReference& reference, Depth depth,
                                                 const DrawingInfoCache* known)
{
    Question question;
    question.stored = reference.getFileName();
    question.places = sm::placesOf(reference);
    question.depth = depth;
    forEachDocument([&](const TvApDocument& document) {
        if (document.isNamedDrawing())
            question.documents.push_back({document.fileName(), document.fileIdentity()});
    });
    for (const TvString& place : question.places) {
        const DrawingInfo* info = known ? known->Known(place) : nullptr;
        if (!info || info->isOfDocument)
            continue;
        question.isKnown = true;
        question.knownPath = place;
        question.knownTime = info->modificationTime;
        question.knownSize = info->fileSize;
        break;
    }
    return question;
}

DrawingFacts DrawingLook::answer(const Question& question)
{
    DrawingFacts facts;
    facts.stored = question.stored;
    if (question.depth != Depth::Place)
        askForFile(facts);
    if (!facts.isThere)
        findPlace(question, facts);
    const TvString& path = question.depth == Depth::Place ? facts.resolved : facts.path();
    if (path.isEmpty())
        return facts;
    const auto asked = asking(path);
    facts.openDocument = documentWith(path, question.documents);
    if (question.depth == Depth::Place)
        return facts;
    facts.modificationTime = KvFileSystem::getModificationTime(path);
    facts.size = KvFileSystem::getFileSize(path);
    if (question.depth == Depth::Content)
        readContent(question, facts);
    return facts;
}

TvApDocument* openDocumentNamed(const TvString& name)
{
    TvApDocument* found = nullptr;
    forEachDocument([&](TvApDocument& document) {
        if (!name.isEmpty() && document.fileName() == name)
            found = &document;
    });
    return found;
}

DrawingLook::DrawingLook(Question question)
    : m_shared(std::make_shared<Shared>(Shared{std::move(question), {}})),
      m_work(1, [shared = m_shared](std::size_t, const ApartWork::GivenUp&) {
          shared->facts = answer(shared->question);
      })
{
}

DrawingLook::~DrawingLook()
{
    m_work.giveUp(); // nobody waits for it: it asks nothing that could go before it
}

bool DrawingLook::isSilent(const Question& question)
{
    return std::ranges::any_of(question.places, [](const TvString& place) {
        return core::isSilent(folderOfNative(base::nativePath(place)), kPatienceMs);
    });
}

std::optional<DrawingFacts> placeInTime(const TvSmTvDbLayoutReference& reference, int waitMs)
{
    DrawingLook::Question question =
        DrawingLook::questionAbout(reference, DrawingLook::Depth::Place);
    if (DrawingLook::isSilent(question))
        return std::nullopt;
    DrawingLook look(std::move(question));
    return look.hasAnswered(waitMs) ? std::optional(std::move(look.facts())) : std::nullopt;
}

} // namespace core
