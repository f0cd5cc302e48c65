// The object codec with any bytes: what it decodes it can write, and what it wrote is stable.
//
// First byte: version (low bits) and form. Form 0: a whole record follows, from its size to its
// checksum. Form 1: two bytes of class, two bytes of size of the handles in bits, then what follows
// the own handle.

#include <cstdlib>

#include <dwg/object_codec.h>

namespace {

constexpr dwg::Version kVersions[] = {dwg::Version::Ac1015, dwg::Version::Ac1018,
                                      dwg::Version::Ac1021, dwg::Version::Ac1024,
                                      dwg::Version::Ac1027, dwg::Version::Ac1032};

// Every class without a number of its own has one from 500 on.
const dwg::ObjectClasses& allClasses()
{
    static const dwg::ObjectClasses classes = [] {
        dwg::ObjectClasses made;
        int number = 500;
        for (const db::ClassDef* each : db::allClasses())
            made.add(number++, each->name(), each->isEntity());
        return made;
    }();
    return classes;
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

std::vector<std::uint8_t> withHead(dwg::Version version, dwg::Bytes input)
{
    if (input.size() < 5)
        return {};
    const auto type = static_cast<std::uint16_t>((input[0] | input[1] << 8) % 700);
    const std::size_t handleBits = input[2] | input[3] << 8;
    dwg::BitWriter bits;
    std::size_t sizeAt = 0;
    if (dwg::hasHandleStreamSize(version)) {
        bits.writeOT(type);
    } else {
        bits.writeBS(type);
        sizeAt = bits.bitCount();
        bits.writeRL(0);
    }
    bits.writeH(0, 0x2A);
    bits.writeBytes(input.subspan(4));
    bits.padToByte();
    const std::size_t end = bits.bitCount() - handleBits % (bits.bitCount() - 64);
    if (!dwg::hasHandleStreamSize(version))
        bits.patchRL(sizeAt, static_cast<std::uint32_t>(end));
    return dwg::frameRecord(version, bits.take(), end);
}

void tryRecord(const dwg::ObjectContext& context, dwg::Bytes frame)
{
    const auto object = dwg::parseRecord(context.version, frame);
    if (!object)
        return;
    static_cast<void>(dwg::decodeCommonPart(*object, context));
    db::Record record;
    const base::Status status = dwg::decodeObject(*object, context, record);
    require(record.words().size() < 64 * frame.size() + 100000);
    if (!status)
        return;
    const auto written = dwg::encodeObject(record, context);
    require(bool(written));
    const auto again = dwg::parseRecord(context.version, *written);
    require(bool(again));
    const auto reread = dwg::decodeObject(*again, context);
    require(bool(reread) && *reread == record);
    require(*dwg::encodeObject(*reread, context) == *written);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 14)
        return 0;
    const dwg::Version version = kVersions[(data[0] & 7) % 6];
    const dwg::ObjectContext context{version, allClasses(),
                                     dwg::CodePage::numbered(data[0] & 0x40 ? 38 : 30)};
    const dwg::Bytes input(data + 1, size - 1);
    if (data[0] & 0x80) {
        const auto frame = withHead(version, input);
        if (!frame.empty())
            tryRecord(context, frame);
    } else {
        tryRecord(context, input);
    }
    return 0;
}
