#pragma once

#include <functional>
#include <memory>

class TarvXmlParser;

/// Where the palette set stands is kept in a file of the user's own, "SheetSetPaletteSet.xml", in
/// the element "PS", whose content is the palette set's affair. Other content of the file stays.

/// Puts the palette set where the file says: at its first showing, when its palettes are in and it
/// may dock. Without file or element it is docked on the right. Without an XML parser the user is
/// told, and it stays where it is. Nothing without a palette set.
void LoadPaletteState();
/// Writes the file, before the palette set goes. Silent where that fails.
void SavePaletteState();

namespace core {

/// Makes the parser for both; an empty function: the program's own.
void setPaletteStateParser(std::function<std::unique_ptr<TarvXmlParser>()> make);

} // namespace core
