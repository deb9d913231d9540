a \
 b \ c\\ d
#define X \  
 1 \
 2
int y;
