#define LIST NUBLISTP(Foo)
#define NONE
#define	TAB 1
#define LIST other
LIST x;
