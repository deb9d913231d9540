Foo::Foo ( int a , char * b ) : Bar ( a ) {
  if ( a > 0 && b ) { _a [ 0 ] = a ; } else if ( ! b ) _b = 0 ;
  else return ;
  for ( int i = 0 ; i < 3 ; i ++ ) { f ( i , "x" , 'y' ) -> g ( ) ; }
  while ( a -- ) delete [ ] b ;
  switch ( a ) { case 1 : break ; default : h ( ) ; }
  return new Foo ( a , b ) ;
}
