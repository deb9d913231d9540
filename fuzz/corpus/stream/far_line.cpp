#define A 1
int a;

/* b

 */ int c ;





int d;