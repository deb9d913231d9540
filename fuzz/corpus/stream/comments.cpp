/*/ one */ int a; // two
/* three
 four */ int b /**/ ;
// five \
int c;
