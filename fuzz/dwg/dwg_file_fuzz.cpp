// A drawing file as the database asks for it: opened, every object decoded, saved in its version
// and opened again.
//
// Checksums and packing would stop nearly every change at the shell. So a mutation is mostly made
// inside: of the bits of one object or of one section, which a save then packs and sums.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

#include <db/drawing_file.h>
#include <dwg/dwg_codec.h>
#include <dwg/raw_save.h>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

constexpr std::size_t kLargestFile = 40'000;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

const dwg::DwgCodec& codec()
{
    static const dwg::DwgCodec codec;
    return codec;
}

void readEverything(const db::DrawingFile& file)
{
    db::Record record;
    for (const std::uint64_t handle : file.handles()) {
        (void)file.kind(handle);
        if (!file.read(handle, record))
            (void)file.readCommon(handle, record);
        (void)file.isEditable(handle);
        (void)file.thumbnail(handle);
    }
    (void)file.classes();
    (void)file.summary();
    (void)file.preview();
    (void)file.check();
}

/// Saved as it is, and with one object as its own record gives it.
void save(const db::DrawingFile& file)
{
    const auto header = file.header();
    if (!header || file.handles().empty())
        return;
    db::Record record;
    std::map<std::uint64_t, const db::Record*> changed;
    for (const std::uint64_t handle : file.handles())
        if (changed.empty() && file.read(handle, record))
            changed.emplace(handle, &record);
    db::Contents contents;
    contents.origin = &file;
    contents.changed = &changed;
    contents.header = &*header;
    contents.handles = file.handles();
    const auto saved = codec().write(contents, file.version());
    if (!saved)
        return require(saved.status().reason() != base::Reason::None);
    const auto again = codec().open(*saved);
    require(bool(again) && std::ranges::equal((*again)->handles(), file.handles()));
}

std::vector<std::uint8_t> mutated(dwg::Bytes bytes, std::size_t most)
{
    std::vector<std::uint8_t> copy(most);
    std::copy(bytes.begin(), bytes.end(), copy.begin());
    copy.resize(LLVMFuzzerMutate(copy.data(), bytes.size(), copy.size()));
    return copy;
}

/// Changes the data of one object behind its own handle; its frame is made anew.
bool mutateObject(const dwg::RawDrawing& drawing, std::minstd_rand& random,
                  dwg::RawChanges& changes)
{
    const auto& objects = drawing.objects();
    if (objects.empty())
        return false;
    const std::uint64_t handle = objects[random() % objects.size()].handle;
    const auto object = drawing.object(handle);
    if (!object || object->handle != handle)
        return false;
    const std::size_t kept = object->bodyBit / 8 + 1;
    if (kept >= object->data.size())
        return false;
    std::vector<std::uint8_t> data(object->data.begin(), object->data.end());
    const auto body = dwg::Bytes(data).subspan(kept);
    const auto other = mutated(body, body.size());
    std::copy(other.begin(), other.end(), data.begin() + static_cast<std::ptrdiff_t>(kept));
    changes.objects[handle] = dwg::frameRecord(drawing.version(), data, object->endBit);
    return true;
}

bool mutateSection(const dwg::RawDrawing& drawing, std::minstd_rand& random,
                   dwg::RawChanges& changes)
{
    const auto names = drawing.sectionNames();
    const std::string& name = names[random() % names.size()];
    const auto bytes = drawing.section(name);
    if (!bytes || bytes->empty())
        return false;
    changes.sections[name] = mutated(*bytes, bytes->size() + 64);
    return !changes.sections[name].empty();
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned int seed)
{
    std::minstd_rand random(seed);
    if (random() % 4 == 0)
        return LLVMFuzzerMutate(data, size, most);
    const auto drawing = dwg::RawDrawing::open({data, data + size});
    dwg::RawChanges changes;
    const bool isChanged = drawing && (random() % 3 == 0 ? mutateSection(*drawing, random, changes)
                                                         : mutateObject(*drawing, random, changes));
    const auto saved = isChanged ? dwg::save(*drawing, changes, {true})
                                 : base::Result<std::vector<std::uint8_t>>(base::Status());
    if (!isChanged || !saved || saved->size() > most)
        return LLVMFuzzerMutate(data, size, most);
    std::copy(saved->begin(), saved->end(), data);
    return saved->size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > kLargestFile)
        return 0;
    const auto file = codec().open({data, data + size});
    if (!file)
        return 0;
    readEverything(**file);
    save(**file);
    return 0;
}
