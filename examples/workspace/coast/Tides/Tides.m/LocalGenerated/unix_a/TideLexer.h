// Generated. Seen by this module only.
enum TideWord { TideWordPort, TideWordNumber, TideWordEnd };
TideWord NextTideWord(const char*& ioText);
