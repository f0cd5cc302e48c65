#pragma once

#include <string>
#include <vector>

#include <db/drawing_file.h>

class TvDbDatabase;

namespace db {

/// What a drawing is made of, counted.
struct DrawingInventory {
    struct Class {
        std::string name;
        bool isEntity = false;
        std::size_t objects = 0;
        std::size_t raw = 0; ///< of them kept as bytes
    };

    FileFormat format = FileFormat::Dwg; ///< of the file it was read from
    Version version = Version::Ac1032;
    std::size_t objects = 0;
    std::size_t raw = 0;     ///< kept as bytes: of unknown class or form, or damaged
    std::size_t damaged = 0; ///< of them, those that contradict themselves
    std::uint64_t highestHandle = 0;
    std::uint64_t seed = 0;     ///< the next handle, as the file says
    std::vector<Class> classes; ///< by name
    Preview::Kind preview = Preview::Kind::None;
    std::vector<ClassEntry> named; ///< the classes that the file names, in its order
};

/// Counts the objects that are not erased. Reads each once without keeping it.
DrawingInventory inventoryOf(TvDbDatabase& database);

/// How many pictures of layouts and views a file of another form has no place for: they stand
/// outside of the objects, in drawings of AC1027 and later.
/// @param version  TvDb::TvDbDwgVersion; 0: the drawing's own.
std::size_t picturesLeftOut(const TvDbDatabase& database, FileFormat format, int version);

/// The format of the file that the drawing was read from; of a new one, DWG.
FileFormat fileFormatOf(const TvDbDatabase& database);

} // namespace db
