/* A library that loads but exports no MI factory: the command must refuse it. */
int CliNoFactoryMarker(void) {
  return 42;
}
