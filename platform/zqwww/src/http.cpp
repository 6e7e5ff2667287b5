#include "zqwww.h"

HTTP::HTTP() = default;

HTTP::~HTTP() = default;
