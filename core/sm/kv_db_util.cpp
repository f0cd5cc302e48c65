#include "sm/kv_db_util.h"

#include <algorithm>

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "internals.h"
#include "sm/ask_disk.h"
#include "sm/environment.h"

using sm::Internals;

TvSmSheetSetMgr* KvDbUtil::tarvGetSheetSetMgr()
{
    static TvSmSheetSetMgr manager;
    return sm::environment().manager ? sm::environment().manager : &manager;
}

bool KvDbUtil::GetCurrentLayout(TvDbDatabase*& db, const TvChar*& drawingName,
                                TvDbHandle& layoutHandle)
{
    static TvString name; // the text that the caller looks at
    sm::CurrentLayoutProvider* provider = sm::environment().layout;
    TvString now;
    if (!provider || !provider->currentLayout(db, now, layoutHandle))
        return false;
    name = std::move(now);
    drawingName = name.kwszPtr();
    return true;
}

namespace {

/// Visits every sheet below @p subset in tree order until @p visit answers false.
template <class Visit>
bool forEachSheet(const TvSmSubset& subset, Visit&& visit)
{
    for (TvSmComponent* child = Internals::firstChild(subset); child;
         child = Internals::nextSibling(*child)) {
        if (child->isA() == TvSmSheet::desc()) {
            if (!visit(static_cast<TvSmSheet&>(*child)))
                return false;
        } else if (const auto* below = tvrxCast<TvSmSubset>(child);
                   below && !forEachSheet(*below, visit)) {
            return false;
        }
    }
    return true;
}

/// A drawing that sheets are compared with: by file name first, and only then on the disk.
class DrawingMatch
{
public:
    explicit DrawingMatch(const TvString& drawing)
        : m_drawing(drawing), m_fileName(base::PathRules::native().fileNameOf(drawing))
    {
    }

    enum class Answer { No, Yes, TheDiskKnows };
    Answer leadsTo(const TvSmFileReference& reference) const
    {
        const TvString stored = reference.getFileName();
        if (!base::equalNoCase(lastPart(stored), m_fileName))
            return Answer::No;
        return stored == m_drawing ? Answer::Yes : Answer::TheDiskKnows;
    }

    sm::DiskQuestion question(const TvSmFileReference& reference) const
    {
        const TvString stored = reference.getFileName();
        const std::vector<TvString> places = sm::placesOf(reference);
        sm::DiskQuestion question{places, [stored, places, drawing = m_drawing](const auto& about) {
                                      return isOneOf(stored, places, drawing, about);
                                  }};
        question.paths.push_back(m_drawing);
        return question;
    }

private:
    static bool isOneOf(const TvString& stored, const std::vector<TvString>& places,
                        const TvString& drawing, const sm::About& about)
    {
        if (base::PathRules::native().isSame(stored, drawing) &&
            sm::isSameFile(stored, drawing, about))
            return true;
        const auto isThere = [&](const TvString& place) {
            const std::shared_ptr<void> asked = about(place);
            return KvFileSystem::pathFileExists(place);
        };
        const auto resolved = std::ranges::find_if(places, isThere);
        return resolved != places.end() && sm::isSameFile(*resolved, drawing, about);
    }
    static std::u16string_view lastPart(const TvString& path)
    {
        const int slash = path.findLastOneOf(u"/\\");
        return path.view().substr(static_cast<std::size_t>(slash + 1));
    }

    TvString m_drawing;
    TvString m_fileName;
};

/// The sheets that may be of a drawing, in tree order; the disk is asked about all of them at once.
class Candidates
{
public:
    explicit Candidates(const TvChar* drawing) : m_match(TvString(drawing)) {}

    /// @return whether it is one for certain.
    bool add(TvSmSheet& sheet, const TvSmFileReference& reference)
    {
        const DrawingMatch::Answer answer = m_match.leadsTo(reference);
        if (answer == DrawingMatch::Answer::No)
            return false;
        const bool isSure = answer == DrawingMatch::Answer::Yes;
        m_sheets.push_back({&sheet, isSure});
        if (!isSure)
            m_questions.push_back(m_match.question(reference));
        return isSure;
    }

    std::vector<TvSmSheet*> take(sm::Wanted wanted)
    {
        const std::vector<bool> answers = sm::askDisk(std::move(m_questions), wanted);
        auto answer = answers.begin();
        std::vector<TvSmSheet*> found;
        for (const auto& [sheet, isSure] : m_sheets)
            if (isSure || *answer++)
                found.push_back(sheet);
        return found;
    }

private:
    DrawingMatch m_match;
    std::vector<std::pair<TvSmSheet*, bool>> m_sheets;
    std::vector<sm::DiskQuestion> m_questions; // of those that are not sure
};

} // namespace

TvSmSheet* KvDbUtil::FindSheetFromSubset(const TvSmSubset* subset, const TvChar* drawingName,
                                         TvDbHandle layoutHandle)
{
    if (!subset || !drawingName)
        return nullptr;
    Candidates candidates(drawingName);
    forEachSheet(*subset, [&](TvSmSheet& sheet) {
        const TvSmTvDbLayoutReference* layout = sheet.getLayoutReference();
        const bool isFound = layout && TvDbHandle(layout->getHandle().view()) == layoutHandle &&
                             candidates.add(sheet, *layout);
        return !isFound;
    });
    const std::vector<TvSmSheet*> found = candidates.take(sm::Wanted::FirstYes);
    return found.empty() ? nullptr : found.front();
}

void KvDbUtil::GetAllSheetsInTheSubSet(const TvSmSubset* subset, std::vector<TvSmSheet*>& out)
{
    if (subset)
        forEachSheet(*subset, [&](TvSmSheet& sheet) {
            out.push_back(&sheet);
            return true;
        });
}

int KvDbUtil::GetSheetNumsInSubSet(const TvSmSubset* subset)
{
    int count = 0;
    if (subset)
        forEachSheet(*subset, [&](TvSmSheet&) {
            ++count;
            return true;
        });
    return count;
}

bool KvDbUtil::GetAllSheetOfOneDwgInSheetSet(const TvSmSheetSet* sheetSet,
                                             const TvChar* drawingName,
                                             std::vector<TvSmSheet*>& out)
{
    if (!sheetSet || !drawingName)
        return false;
    Candidates candidates(drawingName);
    forEachSheet(*sheetSet, [&](TvSmSheet& sheet) {
        if (const TvSmTvDbLayoutReference* layout = sheet.getLayoutReference())
            candidates.add(sheet, *layout);
        return true;
    });
    const std::vector<TvSmSheet*> found = candidates.take(sm::Wanted::All);
    out.insert(out.end(), found.begin(), found.end());
    return !found.empty();
}

bool KvDbUtil::IsCurrentSheetInSheetSet(const TvSmDatabase* db)
{
    TvDbDatabase* drawing = nullptr;
    const TvChar* name = nullptr;
    TvDbHandle layout;
    return db && GetCurrentLayout(drawing, name, layout) &&
           FindSheetFromSubset(db->getSheetSet(), name, layout);
}
