// A drawing edited at random: opened, changed, erased, undone, saved and read again.
//
// First byte: which drawing. Then one byte an operation, and one byte each for what it takes.

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>

#include <db/record_editor.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_transaction.h>
#include <db/tv_db_xrecord.h>
#include <dwg/dwg_codec.h>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

constexpr const char* kDrawings[] = {"line-ac1015.dwg", "line-ac1018.dwg", "line-ac1021.dwg",
                                     "line-ac1024.dwg", "line-ac1027.dwg", "line-ac1032.dwg"};

const std::vector<std::uint8_t>& drawing(std::size_t index)
{
    static std::vector<std::uint8_t> loaded[std::size(kDrawings)];
    std::vector<std::uint8_t>& bytes = loaded[index];
    if (bytes.empty()) {
        std::ifstream in(std::string(KV_TEST_DATA "/dwg/") + kDrawings[index], std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }
    return bytes;
}

/// What a drawing holds, object by object.
std::map<std::uint64_t, db::Record> contentOf(const TvDbDatabase& database)
{
    std::map<std::uint64_t, db::Record> content;
    for (const TvDbObjectId id : database.objectIds()) {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForNotify);
        require(bool(object));
        content.emplace(id.handle().value(), object->record());
    }
    return content;
}

class Session
{
public:
    explicit Session(const std::vector<std::uint8_t>& bytes)
    {
        require(m_database.readDwgBytes(bytes) == TvStatus::Ok);
    }

    void run(std::uint8_t operation, std::uint8_t argument)
    {
        switch (operation % 12) {
        case 0: return put(argument);
        case 1: return take(argument);
        case 2: return erase(argument, true);
        case 3: return erase(argument, false);
        case 4: m_database.undo(); return;
        case 5: m_database.redo(); return;
        case 6: m_database.startUndoRecord(); return;
        case 7: m_database.disableUndoRecording(argument & 1); return;
        case 8: m_database.transactionManager()->startTransaction(); return;
        case 9: m_database.transactionManager()->endTransaction(); return;
        case 10: m_database.transactionManager()->abortTransaction(); return;
        case 11: m_database.setTilemode(argument & 1); return;
        default: return;
        }
    }

    void saveAndCompare()
    {
        const base::Result<std::vector<std::uint8_t>> bytes =
            m_database.toBytes(db::FileFormat::Dwg);
        if (!bytes)
            return require(bytes.status().reason() != base::Reason::None);
        TvDbDatabase again(false, true);
        require(again.readDwgBytes(*bytes) == TvStatus::Ok);
        const auto before = contentOf(m_database), after = contentOf(again);
        require(before.size() == after.size());
        for (auto a = before.begin(), b = after.begin(); a != before.end(); ++a, ++b)
            require(a->first == b->first && a->second.classDef() == b->second.classDef());
    }

private:
    static TvString key(std::uint8_t argument) { return TvString().format(u"K%d", argument % 16); }
    void put(std::uint8_t argument)
    {
        const TvDbObjectPointer<TvDbDictionary> named(m_database.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        auto made = std::make_unique<TvDbXrecord>();
        TvDbObjectId id;
        if (!named || named->setAt(key(argument), made.get(), id) != TvStatus::Ok)
            return;
        const TvResbufPtr items(tvutBuildList(1, u"value", 90, static_cast<int>(argument)));
        made->setFromRbChain(*items.get());
        made.release()->close();
    }
    void take(std::uint8_t argument)
    {
        const TvDbObjectPointer<TvDbDictionary> named(m_database.namedObjectsDictionaryId(),
                                                      TvDb::kForWrite);
        if (named)
            named->remove(key(argument));
    }
    void erase(std::uint8_t argument, bool erasing)
    {
        const TvDbObjectId id = m_database.find(argument);
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite, true);
        if (object)
            object->erase(erasing);
    }

    TvDbDatabase m_database{false, true};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1 || size > 200)
        return 0;
    dwg::install();
    Session session(drawing(data[0] % std::size(kDrawings)));
    for (std::size_t i = 1; i + 1 < size; i += 2)
        session.run(data[i], data[i + 1]);
    session.saveAndCompare();
    return 0;
}
