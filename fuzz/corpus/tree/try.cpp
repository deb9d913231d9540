void f ( ) { NUBTry { g ( ) ; } NUBEndTry ( e ) ; NUBTry x ; return ( a + b ) ; }
