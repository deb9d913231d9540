// Generated for unix_b, where a clock is longer.
enum TideCatalog { TideNoStation = 1, TideNoValue };
typedef long long TideClock;
