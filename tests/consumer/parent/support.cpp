// Something to make libraries of.
int support()
{
    return 0;
}
