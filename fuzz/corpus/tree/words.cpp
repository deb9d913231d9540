typedef unsigned int UINT ; typedef int ( * F ) ( int ) ; enum E { A , B = 2 } ; ExportedByX enum G { } ; struct S { int a ; } ; interface IFoo : IBar { } inline static int f ( ) { }
