void f()
{
  xx();
  delete[3] p;
}