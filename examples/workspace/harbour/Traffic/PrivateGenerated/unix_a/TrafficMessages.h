// Generated from the catalogue of messages.
#define TrafficMsgEnter "TrafficEnter"
#define TrafficMsgWait "TrafficWait"
typedef const char* TrafficMessage;
