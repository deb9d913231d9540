int a;
#define B 2
	int c ;
