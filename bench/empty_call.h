// The cheapest call there is with the arguments of a trace line.
#ifndef ZQ_BENCH_EMPTY_CALL_H
#define ZQ_BENCH_EMPTY_CALL_H

void DoNothing(int instance, int level, int channel, bool flush, const char* format, ...)
    __attribute__((noinline, __format__(__printf__, 5, 6)));

#endif
