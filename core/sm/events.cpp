#include "sm/tv_sm_events.h"

TVRX_DEFINE_MEMBERS(TvSmEvents, TvRxObject)

TvSmEvents::~TvSmEvents() = default;
