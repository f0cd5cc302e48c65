#include <rx/tv_rx_service.h>

namespace {

constexpr const TvChar* kPanel = u"TEST_PANEL_SERVICE";

TEST(TvRxService, IsThereFromItsRegistrationUntilItIsTakenOut)
{
    EXPECT_FALSE(tvrxServiceIsRegistered(kPanel));
    TvRxService* service = tvrxRegisterService(kPanel);
    ASSERT_NE(service, nullptr);
    EXPECT_TRUE(tvrxServiceIsRegistered(kPanel));
    EXPECT_TRUE(tvrxUnregisterService(kPanel));
    EXPECT_FALSE(tvrxServiceIsRegistered(kPanel));
    EXPECT_FALSE(tvrxUnregisterService(kPanel));
}

TEST(TvRxService, StandsInTheDictionaryOfServicesInTheRegistry)
{
    TvRxService* service = tvrxRegisterService(kPanel);
    auto* services = tvrxCast<TvRxDictionary>(tvrxSysRegistry()->at(u"ServiceDictionary"));
    ASSERT_NE(services, nullptr);
    EXPECT_EQ(services->at(kPanel), service);
    EXPECT_TRUE(service->isKindOf(TvRxService::desc()));
    tvrxUnregisterService(kPanel);
    EXPECT_EQ(services->at(kPanel), nullptr);
}

TEST(TvRxService, OfANameThatIsTakenOrEmptyIsNotMade)
{
    TvRxService* first = tvrxRegisterService(kPanel);
    EXPECT_EQ(tvrxRegisterService(kPanel), nullptr);
    EXPECT_EQ(tvrxServiceDictionary()->at(kPanel), first) << "the first one stays";
    tvrxUnregisterService(kPanel);
    EXPECT_EQ(tvrxRegisterService(u""), nullptr);
    EXPECT_FALSE(tvrxServiceIsRegistered(u""));
}

} // namespace
