extern "C" { int f ( ) ; }
class __declspec ( dllexport ) Foo : public Bar { };
void __stdcall g ( ) ; externals myextern exextern tern
