// Generated. Seen by this framework only.
#define TideKeyLevel 17
#define TideKeyState 18
