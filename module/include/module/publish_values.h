#pragma once

#include <cstdint>
#include <map>
#include <unordered_set>

#include <base/tv_string.h>

/// What the plot module carries about: which document and layout were current before it switched.
/// Copied member by member; this module makes none.
class __attribute__((visibility("default"))) KvPublishDocumentAndLayoutSwitcher
{
public:
    KvPublishDocumentAndLayoutSwitcher();
    KvPublishDocumentAndLayoutSwitcher(const KvPublishDocumentAndLayoutSwitcher& other);
    KvPublishDocumentAndLayoutSwitcher& operator=(const KvPublishDocumentAndLayoutSwitcher& other);
    ~KvPublishDocumentAndLayoutSwitcher();

    std::uint64_t first = 0;
    std::uint64_t second = 0;
    TvString third;
    bool fourth = false;
    bool fifth = false;
    std::uint32_t sixth = 0;
    std::unordered_set<std::uint64_t> seventh;
};

/// The plot module's list of the documents that it opened.
class __attribute__((visibility("default"))) KvPublishOpenDocumentManager
{
public:
    KvPublishOpenDocumentManager();
    KvPublishOpenDocumentManager(const KvPublishOpenDocumentManager& other);
    KvPublishOpenDocumentManager& operator=(const KvPublishOpenDocumentManager& other);
    ~KvPublishOpenDocumentManager();

    std::map<std::uint64_t, std::uint64_t> documents;
};
