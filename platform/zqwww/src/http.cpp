#include "zqwww.h"

HTTP::HTTP() : maxIncomingBuffer_(65536) {}

HTTP::~HTTP() = default;
