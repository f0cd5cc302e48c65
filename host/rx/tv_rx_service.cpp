#include "rx/tv_rx_service.h"

TVRX_DEFINE_MEMBERS(TvRxService, TvRxObject)

TvRxDictionary* tvrxServiceDictionary()
{
    static TvRxDictionary services;
    if (!tvrxSysRegistry()->has(kTvRxServiceDictionary))
        tvrxSysRegistry()->atPut(kTvRxServiceDictionary, &services);
    return tvrxCast<TvRxDictionary>(tvrxSysRegistry()->at(kTvRxServiceDictionary));
}

TvRxService* tvrxRegisterService(const TvString& name)
{
    if (name.isEmpty() || tvrxServiceIsRegistered(name))
        return nullptr;
    auto service = std::make_unique<TvRxService>();
    tvrxServiceDictionary()->atPut(name, service.get());
    return service.release(); // the dictionary's entry stands for it
}

bool tvrxServiceIsRegistered(const TvString& name)
{
    return tvrxServiceDictionary()->has(name);
}

bool tvrxUnregisterService(const TvString& name)
{
    const std::unique_ptr<TvRxObject> service(tvrxServiceDictionary()->remove(name));
    return service != nullptr;
}
