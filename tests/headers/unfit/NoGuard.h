class NoGuard
{
};
