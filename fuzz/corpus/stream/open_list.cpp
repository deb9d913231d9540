int a;
NUBLISTP(Foo Bar) b;
               