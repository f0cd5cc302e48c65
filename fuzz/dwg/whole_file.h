#pragma once

#include <cstdlib>
#include <cstring>

#include <dwg/raw_save.h>

/// Whatever the bytes are behind the name of a version: each answer is a value or a status, and
/// what is saved reads back. The name is put there, so that no input is wasted on another version.
inline void useWholeFile(const char* versionName, const std::uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> file(data, data + size);
    if (file.size() < 6)
        return;
    std::memcpy(file.data(), versionName, 6);
    const auto drawing = dwg::RawDrawing::open(std::move(file));
    if (!drawing)
        return;
    drawing->check();
    for (const std::string& name : drawing->sectionNames())
        (void)drawing->section(name);
    for (const auto& location : drawing->objects())
        if (const auto record = drawing->object(location))
            (void)record->streams(drawing->version()).failed();
    dwg::RawChanges changes;
    if (!drawing->objects().empty())
        changes.erased.insert(drawing->objects().front().handle);
    for (const bool repair : {false, true})
        if (const auto saved = dwg::save(*drawing, changes, {repair}))
            if (!dwg::RawDrawing::open(*saved))
                std::abort();
}
