// A source for the parent project's libraries.
int support()
{
    return 0;
}
