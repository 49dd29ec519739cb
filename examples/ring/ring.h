#pragma once

// How many seconds this device rings: the customized value, but at least 5 and at most 60.
int RingSeconds();
