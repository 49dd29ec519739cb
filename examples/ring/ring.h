#pragma once

// For how many seconds this device rings: as it is customized, but for 5 at least and 60 at most.
int RingSeconds();
