int main ( int  argc , char * argv [ ] )
{
	return argc > 1 ? 1 : 0 ;
}
