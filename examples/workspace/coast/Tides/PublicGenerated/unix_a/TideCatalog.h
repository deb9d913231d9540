// Generated for unix_a.
enum TideCatalog { TideNoStation = 1, TideNoValue };
typedef long TideClock;
