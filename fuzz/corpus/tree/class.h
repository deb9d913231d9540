class ExportedByXyz Foo : public Bar , private Baz {
public:
  Foo ( int a = 1 , char * b ) ;
  virtual ~Foo ( ) ;
  static int Count ( ) ;
  TIE_x ( y )
private:
  NUBLISTP( Bar ) list ;
  int _a [ 3 ] , * _b ;
};
