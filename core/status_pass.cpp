#include <core/status_pass.h>

#include <unordered_map>
#include <vector>

#include <core/disk_look.h>
#include <sm/publishing.h>
#include <sm/tv_sm_database.h>

namespace core {

namespace {

constexpr std::size_t kNoOwner = static_cast<std::size_t>(-1);

/// Whether new sheets of a subset have a place.
enum class Place { None, Good, Bad };

} // namespace

struct StatusPass::State {
    static constexpr std::size_t kNoQuestion = static_cast<std::size_t>(-1);

    struct Item {
        TvString handle;
        std::size_t owner; ///< of the counts
        bool isSheet;
        std::size_t question = kNoQuestion; ///< about its drawing
    };
    struct Counts {
        std::size_t owner;
        std::size_t sheets = 0, missing = 0;
        Place place = Place::None;          ///< where there is none to ask about
        std::size_t question = kNoQuestion; ///< about its place
    };

    const TvSmDatabase* database = nullptr; // outlives the pass
    Tell tell;
    std::vector<Item> items;    // a subset behind what is below it
    std::vector<Counts> counts; // of the set, and of each subset
    std::size_t next = 0;
    std::vector<DiskLook::Question> questions;          // until the look has them
    std::unordered_map<TvString, std::size_t> drawings; // by path as stored
    std::unordered_map<TvString, std::size_t> folders;  // the same
    std::unique_ptr<DiskLook> disk;

    std::size_t ask(std::unordered_map<TvString, std::size_t>& known, const TvString& stored,
                    const TvSmFileReference& reference);
    std::size_t addCounts(const TvSmSubset& subset, std::size_t owner);
    void gather(const TvSmSubset& subset, std::size_t own);
    std::size_t neededBy(const Item& item) const;
    void lookAt(const Item& item);
    SheetImage imageOf(const Item& sheet) const;
    SheetImage imageOf(const TvSmSubset& subset, const Counts& below) const;
    Place placeOf(const Counts& counted) const;
};

std::size_t StatusPass::State::ask(std::unordered_map<TvString, std::size_t>& known,
                                   const TvString& stored, const TvSmFileReference& reference)
{
    const auto [place, isNew] = known.try_emplace(stored, questions.size());
    if (isNew)
        questions.push_back(DiskLook::questionAbout(reference));
    return place->second;
}

std::size_t StatusPass::State::addCounts(const TvSmSubset& subset, std::size_t owner)
{
    Counts own{owner};
    const TvSmFileReference* location = subset.getNewSheetLocation();
    const TvString stored = location ? location->getFileName() : TvString();
    if (!stored.isEmpty())
        own.question = ask(folders, stored, *location);
    counts.push_back(own);
    return counts.size() - 1;
}

void StatusPass::State::gather(const TvSmSubset& subset, std::size_t own)
{
    for (const TvSmComponent* child : sm::each(subset.getSheetEnumerator())) {
        if (child->isA() == TvSmSheet::desc()) {
            const auto* reference = static_cast<const TvSmSheet*>(child)->getLayoutReference();
            items.push_back(
                {child->objectId().getHandle(), own, true,
                 reference ? ask(drawings, reference->getFileName(), *reference) : kNoQuestion});
        } else if (const auto* below = tvrxCast<TvSmSubset>(child)) {
            const std::size_t inner = addCounts(*below, own);
            gather(*below, inner);
            items.push_back({child->objectId().getHandle(), inner, false});
        }
    }
}

/// How many answers the item's image depends on: all up to the last one that counts.
std::size_t StatusPass::State::neededBy(const Item& item) const
{
    if (item.isSheet)
        return item.question == kNoQuestion ? 0 : item.question + 1;
    std::size_t needed = 0;
    for (std::size_t at = item.owner; at != kNoOwner; at = counts[at].owner)
        if (counts[at].question != kNoQuestion)
            needed = std::max(needed, counts[at].question + 1);
    return needed;
}

SheetImage StatusPass::State::imageOf(const Item& sheet) const
{
    using What = DiskLook::What;
    if (sheet.question == kNoQuestion)
        return SheetImage::ImageSheetMissing;
    switch (disk->answer(sheet.question).what) {
    case What::File: return SheetImage::ImageSheet;
    case What::FileInUse: return SheetImage::ImageSheetInUse;
    default: return SheetImage::ImageSheetMissing;
    }
}

Place StatusPass::State::placeOf(const Counts& counted) const
{
    if (counted.question == kNoQuestion)
        return Place::None;
    return disk->answer(counted.question).what == DiskLook::What::Nothing ? Place::Bad
                                                                          : Place::Good;
}

SheetImage StatusPass::State::imageOf(const TvSmSubset& subset, const Counts& below) const
{
    // A subset without a place of its own has that of the next one above it.
    Place place = placeOf(below);
    for (std::size_t at = below.owner; at != kNoOwner && place == Place::None;
         at = counts[at].owner)
        place = placeOf(counts[at]);
    if (place != Place::Good || (below.sheets > 0 && below.missing == below.sheets))
        return SheetImage::ImageSubsetBad;
    return IsSubsetPublishable(&subset) ? SheetImage::ImageSubset
                                        : SheetImage::ImageSubsetNoPublish;
}

void StatusPass::State::lookAt(const Item& item)
{
    const TvSmPersist* object = database->findObject(item.handle);
    if (item.isSheet) {
        if (!tvrxCast<TvSmSheet>(object))
            return;
        const SheetImage image = imageOf(item);
        ++counts[item.owner].sheets;
        counts[item.owner].missing += image == SheetImage::ImageSheetMissing;
        return tell(item.handle, image);
    }
    const Counts below = counts[item.owner];
    counts[below.owner].sheets += below.sheets;
    counts[below.owner].missing += below.missing;
    if (const auto* subset = tvrxCast<TvSmSubset>(object))
        tell(item.handle, imageOf(*subset, below));
}

StatusPass::StatusPass(const TvSmDatabase* database, Tell tell, base::FileOps& ops)
    : m_state(std::make_unique<State>())
{
    m_state->database = database;
    m_state->tell = std::move(tell);
    if (!database)
        return;
    const TvSmSheetSet* set = database->getSheetSet();
    m_state->gather(*set, m_state->addCounts(*set, kNoOwner));
    m_state->disk = std::make_unique<DiskLook>(std::move(m_state->questions), ops);
}

StatusPass::~StatusPass() = default;
StatusPass::StatusPass(StatusPass&&) noexcept = default;
StatusPass& StatusPass::operator=(StatusPass&&) noexcept = default;

bool StatusPass::isDone() const
{
    return m_state->next >= m_state->items.size();
}

bool StatusPass::isWaiting() const
{
    return !isDone() &&
           !m_state->disk->hasAnswered(m_state->neededBy(m_state->items[m_state->next]), 0);
}

bool StatusPass::step()
{
    if (isDone())
        return false;
    const State::Item& item = m_state->items[m_state->next++];
    m_state->disk->hasAnswered(m_state->neededBy(item), DiskLook::kForEver);
    m_state->lookAt(item);
    return true;
}

bool StatusPass::work(base::Clock& clock, int budgetMs, int waitMs)
{
    constexpr std::int64_t kNsPerMs = 1'000'000;
    const std::int64_t end = clock.steadyNs() + budgetMs * kNsPerMs;
    while (!isDone()) {
        if (!m_state->disk->hasAnswered(m_state->neededBy(m_state->items[m_state->next]), waitMs))
            return false;
        step();
        if (clock.steadyNs() >= end)
            break;
    }
    return isDone();
}

void StatusPass::finish()
{
    while (step()) {
    }
}

std::size_t StatusPass::drawingsAsked() const
{
    return m_state->drawings.size();
}

} // namespace core
