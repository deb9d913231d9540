NUBLISTP( Foo ) x;
NUBLISTV(Bar) y;
SEQUENCE (octet ) z;
DEF_SEQUENCE(w) ; IMPL_SEQUENCE(v);
          
