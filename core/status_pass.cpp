#include <core/status_pass.h>

#include <unordered_map>
#include <vector>

#include <base/kv_file_system.h>
#include <db/file_open_info_tip_manager.h>
#include <sm/publishing.h>
#include <sm/tv_sm_database.h>

namespace core {

namespace {

constexpr std::size_t kNoOwner = static_cast<std::size_t>(-1);

/// Whether new sheets of a subset have a place.
enum class Place { None, Good, Bad };

} // namespace

struct StatusPass::State {
    struct Item {
        TvString handle;
        std::size_t owner; ///< of the counts
        bool isSheet;
    };
    struct Counts {
        std::size_t owner;
        std::size_t sheets = 0, missing = 0;
    };

    const TvSmDatabase* database = nullptr; // outlives the pass
    Tell tell;
    std::vector<Item> items;    // a subset behind what is below it
    std::vector<Counts> counts; // of each subset
    std::size_t next = 0;
    std::unordered_map<TvString, SheetImage> drawings; // by path as stored
    std::unordered_map<TvString, bool> folders;        // whether it is there, the same

    void gather(const TvSmSubset& subset, std::size_t owner);
    void lookAt(const Item& item);
    SheetImage imageOf(const TvSmSheet& sheet);
    SheetImage imageOf(const TvSmSubset& subset, const Counts& below);
    Place placeOf(const TvSmSubset& subset);
};

void StatusPass::State::gather(const TvSmSubset& subset, std::size_t owner)
{
    for (const TvSmComponent* child : sm::each(subset.getSheetEnumerator())) {
        const TvString handle = child->objectId().getHandle();
        if (child->isA() == TvSmSheet::desc()) {
            items.push_back({handle, owner, true});
        } else if (const auto* below = tvrxCast<TvSmSubset>(child)) {
            const std::size_t own = counts.size();
            counts.push_back({owner});
            gather(*below, own);
            items.push_back({handle, own, false});
        }
    }
}

SheetImage StatusPass::State::imageOf(const TvSmSheet& sheet)
{
    const TvSmTvDbLayoutReference* reference = sheet.getLayoutReference();
    if (!reference)
        return SheetImage::ImageSheetMissing;
    const auto [known, isNew] =
        drawings.try_emplace(reference->getFileName(), SheetImage::ImageSheetMissing);
    if (!isNew)
        return known->second;
    const TvString path = reference->resolveFileName();
    if (!path.isEmpty() && KvFileSystem::isFileExisting(path))
        known->second = CFileOpenInfoTipManager::IsInfoFileExists(path)
                            ? SheetImage::ImageSheetInUse
                            : SheetImage::ImageSheet;
    return known->second;
}

Place StatusPass::State::placeOf(const TvSmSubset& subset)
{
    const TvSmFileReference* location = subset.getNewSheetLocation();
    const TvString stored = location ? location->getFileName() : TvString();
    if (stored.isEmpty())
        return Place::None;
    const auto [known, isNew] = folders.try_emplace(stored, false);
    if (isNew)
        known->second = !location->resolveFileName().isEmpty();
    return known->second ? Place::Good : Place::Bad;
}

SheetImage StatusPass::State::imageOf(const TvSmSubset& subset, const Counts& below)
{
    // A subset without a place of its own has that of the next one above it.
    Place place = Place::None;
    for (const TvSmSubset* at = &subset; at && place == Place::None;
         at = tvrxCast<TvSmSubset>(at->owner()))
        place = placeOf(*at);
    if (place != Place::Good || (below.sheets > 0 && below.missing == below.sheets))
        return SheetImage::ImageSubsetBad;
    return IsSubsetPublishable(&subset) ? SheetImage::ImageSubset
                                        : SheetImage::ImageSubsetNoPublish;
}

void StatusPass::State::lookAt(const Item& item)
{
    const TvSmPersist* object = database->findObject(item.handle);
    if (item.isSheet) {
        const auto* sheet = tvrxCast<TvSmSheet>(object);
        if (!sheet)
            return;
        const SheetImage image = imageOf(*sheet);
        if (item.owner != kNoOwner) {
            ++counts[item.owner].sheets;
            counts[item.owner].missing += image == SheetImage::ImageSheetMissing;
        }
        return tell(item.handle, image);
    }
    const Counts below = counts[item.owner];
    if (below.owner != kNoOwner) {
        counts[below.owner].sheets += below.sheets;
        counts[below.owner].missing += below.missing;
    }
    if (const auto* subset = tvrxCast<TvSmSubset>(object))
        tell(item.handle, imageOf(*subset, below));
}

StatusPass::StatusPass(const TvSmDatabase* database, Tell tell) : m_state(std::make_unique<State>())
{
    m_state->database = database;
    m_state->tell = std::move(tell);
    if (database)
        m_state->gather(*database->getSheetSet(), kNoOwner);
}

StatusPass::~StatusPass() = default;
StatusPass::StatusPass(StatusPass&&) noexcept = default;
StatusPass& StatusPass::operator=(StatusPass&&) noexcept = default;

bool StatusPass::isDone() const
{
    return m_state->next >= m_state->items.size();
}

bool StatusPass::step()
{
    if (isDone())
        return false;
    m_state->lookAt(m_state->items[m_state->next++]);
    return true;
}

bool StatusPass::work(base::Clock& clock, int budgetMs)
{
    constexpr std::int64_t kNsPerMs = 1'000'000;
    const std::int64_t end = clock.steadyNs() + budgetMs * kNsPerMs;
    while (step() && clock.steadyNs() < end) {
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
