#include "module/publish_values.h"

// Out of line: other modules call these.

KvPublishDocumentAndLayoutSwitcher::KvPublishDocumentAndLayoutSwitcher() = default;
KvPublishDocumentAndLayoutSwitcher::KvPublishDocumentAndLayoutSwitcher(
    const KvPublishDocumentAndLayoutSwitcher& other) = default;
KvPublishDocumentAndLayoutSwitcher& KvPublishDocumentAndLayoutSwitcher::operator=(
    const KvPublishDocumentAndLayoutSwitcher& other) = default;
KvPublishDocumentAndLayoutSwitcher::~KvPublishDocumentAndLayoutSwitcher() = default;

KvPublishOpenDocumentManager::KvPublishOpenDocumentManager() = default;
KvPublishOpenDocumentManager::KvPublishOpenDocumentManager(
    const KvPublishOpenDocumentManager& other) = default;
KvPublishOpenDocumentManager&
KvPublishOpenDocumentManager::operator=(const KvPublishOpenDocumentManager& other) = default;
KvPublishOpenDocumentManager::~KvPublishOpenDocumentManager() = default;
