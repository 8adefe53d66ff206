#ifndef WINDOWS_TESTS_COM_CLIENT_BENCH_H_
#define WINDOWS_TESTS_COM_CLIENT_BENCH_H_

// Times late-bound calls through the DLL against the same calls on a simulated host in this
// process, and the round trip of a `side` by `side` surface to the host program against copying its
// bytes; prints the ratios.
void RunBenchmarks(int side);

#endif  // WINDOWS_TESTS_COM_CLIENT_BENCH_H_
