int a ; "b
c" ; int d ;