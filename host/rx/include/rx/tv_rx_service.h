#pragma once

#include <rx/tv_rx_dictionary.h>

/// Tells other modules that something is available; stands under its name in "ServiceDictionary" of
/// the system registry, as long as it is.
class TvRxService : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvRxService)
};

/// The key of the services' dictionary in the system registry.
constexpr const TvChar* kTvRxServiceDictionary = u"ServiceDictionary";

/// The services' dictionary, made at its first use. Never null.
TvRxDictionary* tvrxServiceDictionary();
/// Puts a service of that name in.
/// @return the new service, which whoever deletes it takes out (tvrxUnregisterService()); null when
///         the name is empty or there is one already.
TvRxService* tvrxRegisterService(const TvString& name);
bool tvrxServiceIsRegistered(const TvString& name);
/// Takes the service out and deletes it. False when there is none.
bool tvrxUnregisterService(const TvString& name);
