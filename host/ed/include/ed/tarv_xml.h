#pragma once

#include <memory>
#include <vector>

#include <ed/palette_set.h>

/// An element of an XML document. Belongs to the document, and lives as long as it stands there.
class TarvXmlElement : public ed::StateElement
{
public:
    virtual TvString name() const = 0;
    virtual void removeAttribute(const TvString& name) = 0;
    /// The elements within it, in their order.
    virtual std::vector<TarvXmlElement*> children() const = 0;
    /// A new element behind the others.
    virtual TarvXmlElement* addChild(const TvString& name) = 0;
    /// Takes all that is within it away, its attributes too; pointers to elements within it die.
    virtual void clear() = 0;
    /// Its own text, without that of elements within it.
    virtual TvString text() const = 0;
};

/// An XML document: one root element, and whatever else stands in the file.
class TarvXmlDocument
{
public:
    virtual ~TarvXmlDocument() = default;
    /// Null when the document is empty.
    virtual TarvXmlElement* root() const = 0;
    /// The root of an empty document; the one that it has, otherwise.
    virtual TarvXmlElement* makeRoot(const TvString& name) = 0;
    /// Writes it to a file, which holds the former or the new content at every moment.
    virtual bool save(const TvString& path) const = 0;
};

/// Reads XML. What it is made of is the program's affair; a parser may be missing on a machine, and
/// then it does not start.
class TarvXmlParser
{
public:
    virtual ~TarvXmlParser() = default;
    /// False when there is no parser here; nothing else may be asked then.
    virtual bool start() = 0;
    /// Null when the file is not there, cannot be read or is no XML.
    virtual std::unique_ptr<TarvXmlDocument> load(const TvString& path) = 0;
    virtual std::unique_ptr<TarvXmlDocument> makeDocument() = 0;
};

/// A parser of the program's own kind.
std::unique_ptr<TarvXmlParser> tarvMakeXmlParser();

/// The element of that name among the children of the document's root, or the root itself when it
/// has that name. Names are equal without regard to case. Null for null, and when there is none.
TarvXmlElement* FindChildElement(const TarvXmlDocument* document, const TvString& name);
/// The same; what is missing is made: the element, and before it a root of the name @p rootName.
TarvXmlElement* FindOrCreateChildElement(TarvXmlDocument* document, const TvString& name,
                                         const TvString& rootName);
