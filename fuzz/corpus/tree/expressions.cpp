x = ( int ) a + ( * p ) ( b ) [ c ] - * q ++ ; y = ! z ; const char * s = "a" "b" , t ; m [ i ] [ j ] = & n . o -> p :: q ; r = a ? b : c ; u = a---b ;
